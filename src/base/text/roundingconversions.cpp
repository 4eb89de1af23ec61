// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/roundingconversions.h"

#include "base/text/log.h"
#include "base/text/text.h"

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace tavrix
{

namespace
{

// Adding zero turns the -0 of a cut negative fraction into 0, which prints without a sign.
constexpr float plainZero = 0.0F;

float decimalFactor(int decimals)
{
    return static_cast<float>(floatPrefix(u'1' + QString(qBound(0, decimals, 38), u'0')));
}

struct DivisorPass {
    QString logFormat;
    qint64 from = 0; // included
    qint64 to = 0;   // not included
};

std::optional<int> commonDivisorIn(const DivisorPass& pass, int a, int b, int wanted)
{
    logDebug(pass.logFormat, {wanted});
    for (qint64 k = pass.from; k < pass.to; ++k) {
        if (a % k == 0 && b % k == 0) {
            return static_cast<int>(k);
        }
    }
    return std::nullopt;
}

// Primes with gaps: the divisors found with exactly this list are what older results were made with.
int largestListedDivisor(int a, int b)
{
    static constexpr std::array primes = {1,   2,   3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,
                                          41,  47,  53,  59,  67,  71,  83,  89,  101, 107, 109, 113, 127,
                                          131, 137, 139, 149, 157, 167, 179, 181, 191, 197, 199};
    logDebug(QStringLiteral("nbsSousMultipleCommun: pass range nb 1ers"));
    for (auto prime = primes.crbegin(); prime != primes.crend(); ++prime) {
        if (nbsMultiples(a, b, *prime)) {
            return *prime;
        }
    }
    return 1;
}

int searchedDivisor(int a, int b, int wanted)
{
    if (nbsMultiples(a, b, wanted)) {
        return wanted;
    }
    const double w = wanted;
    const auto cut = [](double value) {
        return static_cast<qint64>(value);
    };
    const std::array passes = {
        DivisorPass{QStringLiteral(u"nbsSousMultipleCommun: pass \u00B1 %d"), cut(w / 1.5 + 0.5), cut(1.5 * w)},
        DivisorPass{QStringLiteral("nbsSousMultipleCommun: pass range < %d"), cut(w * 0.5), cut(w / 1.5)},
        DivisorPass{QStringLiteral("nbsSousMultipleCommun: pass range > %d"), cut(w * 1.5), qint64{wanted} * 2}};
    for (const DivisorPass& pass : passes) {
        const std::optional<int> divisor = commonDivisorIn(pass, a, b, wanted);
        if (divisor) {
            return *divisor;
        }
    }
    return largestListedDivisor(a, b);
}

} // namespace

float nbTrimmed(float x, int decimals)
{
    if (decimals == 0) {
        return std::trunc(x) + plainZero;
    }
    // The product is rounded to 32 bits on purpose: 29.97 with two decimals stays 29.97.
    const float factor = decimalFactor(decimals);
    const float product = x * factor;
    return std::isfinite(product) ? std::trunc(product) / factor + plainZero : x;
}

float nbArrondi(float x, int decimals)
{
    if (decimals == 0) {
        return static_cast<float>(std::trunc(double{x} + 0.5)) + plainZero;
    }
    const float factor = decimalFactor(decimals);
    const float product = x * factor;
    if (!std::isfinite(product)) {
        return x;
    }
    const double half = x >= 0.0F ? 0.5 : -0.5;
    return static_cast<float>(std::trunc(double{product} + half)) / factor + plainZero;
}

bool nbMultiple(int n, int m)
{
    Q_ASSERT(m != 0);
    return qint64{n} % m == 0;
}

bool nbsMultiples(int a, int b, int m)
{
    return nbMultiple(a, m) && nbMultiple(b, m);
}

int nbMultipleArrondi(int n, int m)
{
    Q_ASSERT(m != 0);
    if (nbMultiple(n, m)) {
        return n;
    }
    const qint64 quotient = n / m;
    const qint64 rest = n - m * quotient;
    const qint64 lower = m * quotient;
    return truncatedInt(static_cast<double>(m / 2 > rest ? lower : lower + m));
}

int truncatedInt(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= double{std::numeric_limits<int>::max()}) {
        return std::numeric_limits<int>::max();
    }
    return value <= double{std::numeric_limits<int>::min()} ? std::numeric_limits<int>::min() : static_cast<int>(value);
}

QList<int> sousMultipleCommuns(int a, int b)
{
    if (a == 0 && b == 0) {
        return {1, 1};
    }
    for (const int prime : {2, 3, 5, 7, 11, 13, 17}) {
        while (nbsMultiples(a, b, prime)) {
            a /= prime;
            b /= prime;
        }
    }
    return {a, b};
}

int nbsSousMultipleCommun(int a, int b, int wanted)
{
    Q_ASSERT(wanted != 0);
    const int divisor = searchedDivisor(a, b, wanted);
    logDebug(QStringLiteral("nbsSousMultipleCommun: fin %d"), {divisor});
    return divisor;
}

double octet2unite(qint64 bytes, const QString& unit)
{
    const double count = static_cast<double>(bytes);
    const QString letter = unit.toUpper();
    if (bytes <= 0) {
        return count;
    }
    if (letter == QLatin1String("K")) {
        return count / 1024.0;
    }
    if (letter == QLatin1String("M")) {
        return count / (1024.0 * 1024.0);
    }
    return letter == QLatin1String("G") ? count / (1024.0 * 1024.0 * 1024.0) : count;
}

} // namespace tavrix
