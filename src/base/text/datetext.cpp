// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/datetext.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <optional>

namespace tavrix
{

namespace
{

// Nothing is known of a time that no calendar reaches.
std::optional<struct tm> localTime(qint64 secondsSince1970)
{
    const time_t seconds = secondsSince1970;
    struct tm local = {};
    // localtime_r alone need not notice a changed time zone.
    tzset();
    return localtime_r(&seconds, &local) != nullptr ? std::optional<struct tm>(local) : std::nullopt;
}

QString textOf(const struct tm& clock, long aheadOfUtc)
{
    const long offset = aheadOfUtc / 60;
    const long distance = offset < 0 ? -offset : offset;
    std::array<char, 64> buffer = {};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d %c%02ld%02ld", clock.tm_year + 1900,
                  clock.tm_mon + 1, clock.tm_mday, clock.tm_hour, clock.tm_min, clock.tm_sec, offset < 0 ? '-' : '+',
                  distance / 60, distance % 60);
    return QString::fromLatin1(buffer.data());
}

} // namespace

QString dateText(qint64 secondsSince1970)
{
    const std::optional<struct tm> local = localTime(secondsSince1970);
    return local ? textOf(*local, local->tm_gmtoff) : QString();
}

qint64 secondsAheadOfUtc(qint64 secondsSince1970)
{
    const std::optional<struct tm> local = localTime(secondsSince1970);
    return local ? local->tm_gmtoff : 0;
}

qint64 secondsOfLocalReading(qint64 reading)
{
    const time_t seconds = reading;
    struct tm clock = {};
    if (gmtime_r(&seconds, &clock) == nullptr) {
        return reading;
    }
    tzset();
    clock.tm_isdst = -1;
    return mktime(&clock);
}

QString readingText(qint64 reading)
{
    const time_t seconds = reading;
    struct tm clock = {};
    if (gmtime_r(&seconds, &clock) == nullptr) {
        return {};
    }
    return textOf(clock, secondsAheadOfUtc(secondsOfLocalReading(reading)));
}

QString currentDateText()
{
    return dateText(time(nullptr));
}

} // namespace tavrix
