// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Rules for texts that everything else presumes. A null QString is "nothing", an empty one is "": the two differ.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tavrix
{

// Integer at the head of a text: blanks and control characters are skipped, then one optional sign directly before
// ASCII digits. 0 when there is none or for nothing; saturates at the limits of 32 bits.
[[nodiscard]] int leadingInteger(QStringView text);

// Floating-point number at the head of a text, after the same skipping: the longest run of digits, signs, ".", "e",
// "E", read as C does (no hexadecimal, inf, nan or comma). 0 when none can be read; *ok tells.
[[nodiscard]] double floatPrefix(QStringView text, bool* ok = nullptr);

// The same number, but it must stand at the very start: nothing is skipped.
[[nodiscard]] double floatAtStart(QStringView text, bool* ok = nullptr);

// Position of the needle at or after `from`, -1 when absent. An empty or missing needle is never found.
[[nodiscard]] qsizetype findText(const QString& text, const QString& needle, qsizetype from = 0);
[[nodiscard]] bool containsText(const QString& text, const QString& needle);

// Pieces between the separators, left to right. "" gives one empty piece; an absent or empty separator the whole text;
// nothing gives an empty list.
[[nodiscard]] QStringList componentsSeparated(const QString& text, const QString& separator);

// Text after the first occurrence of the marker, up to (not including) the next `end` when that is given and present.
// Nothing when the marker is absent.
[[nodiscard]] QString textAfter(const QString& text, const QString& marker, const QString& end = QString());
// Text before the first occurrence of the marker; the whole text when absent.
[[nodiscard]] QString textBefore(const QString& text, const QString& marker);

// True for U+000A to U+000D, U+0085, U+2028 and U+2029.
[[nodiscard]] bool isNewline(QChar character);

// Strict UTF-8: nothing when the bytes are not valid UTF-8, "" for no bytes. A leading byte-order mark is dropped.
[[nodiscard]] QString decodedUtf8(const QByteArray& bytes);

// The text itself, "" for nothing.
[[nodiscard]] QString notNothing(const QString& text);

// First letter upper case, the rest lower case; locale-independent.
[[nodiscard]] QString capitalized(const QString& text);

} // namespace tavrix
