// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace tavrix::test
{

inline QString text(const char* literal)
{
    return QString::fromUtf8(literal);
}

// What stands between single spaces.
inline QStringList words(const char* literal)
{
    return text(literal).split(QLatin1Char(' '));
}

} // namespace tavrix::test
