// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/model/mediatime.h"

#include "base/text/format.h"

#include <cmath>
#include <limits>

namespace tavrix
{

namespace
{
__extension__ typedef __int128 WideInteger;

qint64 saturated(WideInteger value)
{
    constexpr WideInteger most = std::numeric_limits<qint64>::max();
    constexpr WideInteger least = std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value > most ? most : (value < least ? least : value));
}
} // namespace

MediaTime QTMakeTime(qint64 value, qint32 scale)
{
    return MediaTime{value, scale, 0};
}

MediaTimeRange QTMakeTimeRange(const MediaTime& start, const MediaTime& duration)
{
    return MediaTimeRange{start, duration};
}

MediaTime QTTimeRangeEnd(const MediaTimeRange& range)
{
    MediaTime end = range.time;
    end.timeValue = saturated(WideInteger(end.timeValue) + valueInScale(range.duration, range.time.timeScale));
    return end;
}

QString QTStringFromTime(const MediaTime& time)
{
    if (time.timeScale <= 0) {
        return QStringLiteral("0:00:00.000000");
    }
    constexpr qint32 microseconds = 1000000;
    const qint64 value = valueInScale(time, microseconds);
    const quint64 total = value < 0 ? quint64(0) - static_cast<quint64>(value) : static_cast<quint64>(value);
    const quint64 seconds = total / microseconds;
    return formatText(QStringLiteral("%@%lld:%02lld:%02lld.%06lld"),
                      {value < 0 ? QStringLiteral("-") : QLatin1String(""), static_cast<qint64>(seconds / 3600),
                       static_cast<qint64>(seconds / 60 % 60), static_cast<qint64>(seconds % 60),
                       static_cast<qint64>(total % microseconds)});
}

double secondsDouble(const MediaTime& time)
{
    return time.timeScale == 0 ? 0.0 : static_cast<double>(time.timeValue) / static_cast<double>(time.timeScale);
}

float secondsFloat(const MediaTime& time)
{
    return time.timeScale == 0 ? 0.0F : static_cast<float>(time.timeValue) / static_cast<float>(time.timeScale);
}

qint64 truncated64(double value)
{
    constexpr double limit = 9.2e18;
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    if (value <= -limit) {
        return std::numeric_limits<qint64>::min();
    }
    return static_cast<qint64>(value);
}

qint64 valueInScale(const MediaTime& time, qint32 scale)
{
    if (time.timeScale <= 0) {
        return 0;
    }
    if (time.timeScale == scale) {
        return time.timeValue;
    }
    const WideInteger product = WideInteger(time.timeValue) * scale;
    const WideInteger half = time.timeScale / 2;
    return saturated((product < 0 ? product - half : product + half) / time.timeScale);
}

} // namespace tavrix
