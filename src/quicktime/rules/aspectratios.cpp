// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/aspectratios.h"

#include "base/text/log.h"
#include "base/text/roundingconversions.h"
#include "probe/aspectclass.h"

#include <cmath>

namespace tavrix
{

namespace
{

constexpr double tolerance = 0.02;

struct PixelAspect {
    double numerator;
    double denominator;
};

// Digital video of 4:3 and 16:9 in 625 and 525 lines, then high definition stored at 3/4 of its width.
constexpr PixelAspect knownPixelAspects[] = {{16, 15}, {64, 45}, {8, 9}, {32, 27}, {4, 3}};

QString ratioText(int first, int second)
{
    return formatText(QStringLiteral("%d:%d"), {first, second});
}

QString displayAspect(float displayed, int width, int height)
{
    switch (aspectClass(displayed, tolerance)) {
    case AspectClass::Classic:
        return QStringLiteral("4:3");
    case AspectClass::Wide:
        return QStringLiteral("16:9");
    case AspectClass::Other:
        break;
    }
    const QList<int> pair = sousMultipleCommuns(width, height);
    return ratioText(pair.at(0), pair.at(1));
}

QString otherPixelAspect(float displayed, float encoded)
{
    logDebug(QStringLiteral("par else"));
    constexpr int thousandths = 1000;
    const int ratio = truncatedInt(static_cast<double>((displayed / encoded) * 1000.0F));
    QList<int> pair = sousMultipleCommuns(ratio, thousandths);
    const int divisor = nbsSousMultipleCommun(ratio, thousandths, thousandths);
    const qint64 threefold = qint64(3) * divisor;
    if (pair.at(0) > threefold && pair.at(1) > threefold) {
        pair = sousMultipleCommuns(pair.at(0) / divisor, pair.at(1) / divisor);
    }
    return ratioText(pair.at(0), pair.at(1));
}

QString anamorphicPixelAspect(float displayed, float encoded)
{
    for (const PixelAspect& known : knownPixelAspects) {
        const double aspect = known.numerator / known.denominator;
        if (std::fabs(static_cast<double>(displayed) / aspect - static_cast<double>(encoded)) < tolerance) {
            return formatText(QStringLiteral("%.0f:%.0f"), {known.numerator, known.denominator});
        }
    }
    return otherPixelAspect(displayed, encoded);
}

} // namespace

QStringList DarPar(int displayedWidth, int displayedHeight, int encodedWidth, int encodedHeight)
{
    if (displayedHeight == 0 || encodedWidth == 0 || encodedHeight == 0) {
        return {};
    }
    const float displayed = static_cast<float>(displayedWidth) / static_cast<float>(displayedHeight);
    float encoded = static_cast<float>(encodedWidth) / static_cast<float>(encodedHeight);
    if (encodedWidth == 1 && encodedHeight == 1) {
        logDebug(QString::fromUtf8("PAR                : pas encore déterminable…"));
        encoded = displayed;
    }
    const QString display = displayAspect(displayed, displayedWidth, displayedHeight);
    if (std::fabs(displayed - encoded) < 0.02F) {
        logDebug(QStringLiteral("square pixels"));
        return {display, QStringLiteral("1:1")};
    }
    logDebug(QStringLiteral("anamorphous pixels"));
    return {display, anamorphicPixelAspect(displayed, encoded)};
}

} // namespace tavrix
