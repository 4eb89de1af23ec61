// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// printf-like formatting of texts and logs, always in the C locale and with the C library's rounding.

#include <QString>
#include <QStringList>
#include <QVariant>

#include <initializer_list>

namespace tavrix
{

// One argument of formatText. Nothing prints as "(null)"; lists and dictionaries print on one line.
class FormatArg
{
public:
    FormatArg(const QString& text);
    FormatArg(const char* utf8);
    FormatArg(int number);
    FormatArg(unsigned int number);
    FormatArg(long number);
    FormatArg(unsigned long number);
    FormatArg(qint64 number);
    FormatArg(quint64 number);
    FormatArg(float number);
    FormatArg(double number);
    FormatArg(const QStringList& list);
    FormatArg(const QVariantMap& dictionary);
    FormatArg(const QVariant& value);

    [[nodiscard]] QString asText() const;
    [[nodiscard]] qint64 asInteger() const;
    [[nodiscard]] double asDouble() const;

private:
    QVariant value_;
};

// Fills %@, %d, %i, %u, %x, %X, %f (with flags, width, precision and l, ll, q, h modifiers) and %%.
// An inserted text is never expanded again. Missing arguments leave their place empty; extra ones are ignored. What is
// no such place stays as it stands.
[[nodiscard]] QString formatText(const QString& format, std::initializer_list<FormatArg> arguments = {});
[[nodiscard]] QString formatText(const QString& format, const QList<FormatArg>& arguments);

// Number through the C library's printf with `decimals` decimals ("5.2" for 5.25 and 1).
[[nodiscard]] QString fixedText(double number, int decimals);

// The text that "%@" gives for a value: integers in decimal, 32-bit floats their shortest text (1.77), doubles up to 16
// digits, booleans 1 or 0, nothing for an invalid value or a null text.
[[nodiscard]] QString textOf(const QVariant& value);

} // namespace tavrix
