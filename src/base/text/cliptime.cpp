// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/cliptime.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

constexpr qsizetype mostDigits = 7;
constexpr int perMinute = 60;
constexpr int perSecond = 1000;

// Nothing unless the text is digits alone.
std::optional<int> digits(const QString& text)
{
    const bool plain = std::ranges::all_of(
        text, [](QChar character) { return character >= QLatin1Char('0') && character <= QLatin1Char('9'); });
    return plain && !text.isEmpty() && text.size() <= mostDigits ? std::optional(text.toInt()) : std::nullopt;
}

} // namespace

std::optional<double> clipTime(const QString& text)
{
    constexpr qsizetype mostPieces = 3;
    const qsizetype point = std::max(text.indexOf(QLatin1Char('.')), text.indexOf(QLatin1Char(',')));
    const QStringList pieces = text.left(point).split(QLatin1Char(':'));
    double seconds = 0;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const std::optional<int> number = digits(pieces.at(i));
        if (!number || pieces.size() > mostPieces || (i > 0 && *number >= perMinute)) {
            return std::nullopt;
        }
        seconds = seconds * perMinute + *number;
    }
    if (point < 0) {
        return seconds;
    }
    constexpr qsizetype mostDecimals = 6;
    const QString decimals = text.mid(point + 1);
    const std::optional<int> number = digits(decimals);
    if (!number || decimals.size() > mostDecimals) {
        return std::nullopt;
    }
    return seconds + *number / std::pow(10.0, static_cast<double>(decimals.size()));
}

bool takePartTime(std::optional<ClipPart>& part, const QString& option, const QString& text)
{
    const std::optional<double> time = clipTime(text);
    if (!time) {
        return false;
    }
    ClipPart changed = part.value_or(ClipPart());
    if (option == QLatin1String("--from")) {
        changed.from = *time;
    } else {
        changed.to = time;
    }
    part = changed;
    return true;
}

QString clipTimeText(double seconds)
{
    const auto all = static_cast<qint64>(std::llround(std::max(0.0, seconds) * perSecond));
    const qint64 whole = all / perSecond;
    const QString second = QString::number(whole % perMinute).rightJustified(2, QLatin1Char('0'));
    const qint64 minutes = whole / perMinute;
    QString text = minutes < perMinute ? QString::number(minutes)
                                       : QString::number(minutes / perMinute) + QLatin1Char(':') +
                                             QString::number(minutes % perMinute).rightJustified(2, QLatin1Char('0'));
    text += QLatin1Char(':') + second;
    if (all % perSecond != 0) {
        QString decimals = QString::number(all % perSecond).rightJustified(3, QLatin1Char('0'));
        while (decimals.endsWith(QLatin1Char('0'))) {
            decimals.chop(1);
        }
        text += QLatin1Char('.') + decimals;
    }
    return text;
}

} // namespace tavrix
