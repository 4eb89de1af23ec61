// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Rounding with rules of its own, divisibility, and sizes in larger units. None of them fails.

#include <QList>
#include <QString>

namespace tavrix
{

// Divisors must not be 0.
[[nodiscard]] float nbTrimmed(float x, int decimals);
[[nodiscard]] float nbArrondi(float x, int decimals);
[[nodiscard]] bool nbMultiple(int n, int m);
[[nodiscard]] bool nbsMultiples(int a, int b, int m);
[[nodiscard]] int nbMultipleArrondi(int n, int m);
[[nodiscard]] QList<int> sousMultipleCommuns(int a, int b); // two elements; (0, 0) gives [1, 1]
[[nodiscard]] int nbsSousMultipleCommun(int a, int b, int wanted);

// Double to int, saturating; NaN gives 0.
[[nodiscard]] int truncatedInt(double value);

// Unit "K", "M" or "G" in either case divides; any other leaves bytes; 0 or less unchanged.
[[nodiscard]] double octet2unite(qint64 bytes, const QString& unit);

} // namespace tavrix
