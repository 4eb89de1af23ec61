#include "base/datetext.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace tavrix
{

QString dateText(qint64 secondsSince1970)
{
    const time_t seconds = secondsSince1970;
    struct tm local = {};
    // localtime_r alone need not notice a changed time zone.
    tzset();
    if (!localtime_r(&seconds, &local)) {
        return {};
    }
    const long offset = local.tm_gmtoff / 60;
    const long distance = offset < 0 ? -offset : offset;
    std::array<char, 64> buffer = {};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d %c%02ld%02ld", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, offset < 0 ? '-' : '+',
                  distance / 60, distance % 60);
    return QString::fromLatin1(buffer.data());
}

QString currentDateText()
{
    return dateText(time(nullptr));
}

} // namespace tavrix
