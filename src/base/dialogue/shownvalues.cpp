// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/shownvalues.h"

#include "base/dialogue/localisation.h"
#include "base/text/cliptime.h"
#include "base/text/format.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

namespace tavrix
{

namespace
{

constexpr double thousand = 1000;
// What would be rounded to a thousand of a unit is one of the next.
constexpr double nearlyThousand = 999.5;

QLocale shownLocale()
{
    const QLocale ofTheLanguage(currentLanguage());
    const QLocale ofTheUser = QLocale::system();
    return ofTheUser.language() == ofTheLanguage.language() ? ofTheUser : ofTheLanguage;
}

} // namespace

QString shownDecimal(double value, int decimals)
{
    return fixedText(value, decimals).replace(QLatin1Char('.'), QLocale(currentLanguage()).decimalPoint());
}

QString shownClipTime(double seconds)
{
    return clipTimeText(seconds).replace(QLatin1Char('.'), QLocale(currentLanguage()).decimalPoint());
}

QString shownSize(qint64 bytes)
{
    const QStringList units = localizedString(QStringLiteral("Size_units"), QStringLiteral("Batch")).split(u' ');
    double value = static_cast<double>(qMax(qint64(0), bytes)) / thousand;
    qsizetype unit = 0;
    while (value >= nearlyThousand && unit + 1 < units.size()) {
        value /= thousand;
        ++unit;
    }
    constexpr double fewerDigits = 9.95;
    const bool wholeKilobytes = unit == 0;
    const bool decimal = !wholeKilobytes && (value < fewerDigits || unit > 1);
    return formatText(localizedString(QStringLiteral("Size_words"), QStringLiteral("Batch")),
                      {shownDecimal(value, decimal ? 1 : 0), units.at(unit)});
}

QString shownDate(qint64 secondsSince1970)
{
    const QDateTime date = QDateTime::fromSecsSinceEpoch(secondsSince1970);
    return date.isValid() ? shownLocale().toString(date, QLocale::ShortFormat) : QString(QLatin1String(""));
}

} // namespace tavrix
