// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Lists of texts, and texts taken apart and cleaned. None of them fails.

#include <QString>
#include <QStringList>

namespace tavrix
{

[[nodiscard]] QStringList linesToArray(const QString& text); // split at every newline character, empty lines dropped
[[nodiscard]] QString array2Str(const QStringList& list);    // joined with single blanks
[[nodiscard]] QStringList reverseArray(const QStringList& list);
[[nodiscard]] QStringList supprimerDoublons(const QStringList& list); // reverse order of first occurrences
[[nodiscard]] QStringList triAlphabetique(const QStringList& list);   // case-insensitive
QStringList& insertObjectsFromArray(QStringList& target, const QStringList& source, int index);
[[nodiscard]] QString reverseStr(const QString& text); // by UTF-16 units
[[nodiscard]] QString findAndReplace(const QString& text, const QString& find, const QString& replace);
// File name without extension cleaned of backquotes, ":" made "-", cut to maxLength units; folder and extension kept.
[[nodiscard]] QString trimStr(const QString& path, int maxLength);
// Master-copy name of a source: "_MASTER" before the extension, the file name cut when the whole path is long.
[[nodiscard]] QString oldSrcPathStr2DstPathStr(const QString& path);

} // namespace tavrix
