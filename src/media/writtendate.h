// SPDX-License-Identifier: GPL-3.0-or-later
// Dates as cameras write them into their files: a clock's reading, sometimes with its zone. Free of Qt.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavrix
{

// What a clock shows, zone unknown.
struct ClockTime {
    int year = 0;
    int month = 0; // 1 to 12
    int day = 0;   // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const ClockTime&) const = default;
};

struct WrittenDate {
    ClockTime clock;
    std::optional<int> zoneMinutes; // east of Greenwich; no value: the zone is not told

    bool operator==(const WrittenDate&) const = default;
};

// True for a day of the calendar and a time of the day.
[[nodiscard]] bool isOnCalendar(const ClockTime& clock);
// Seconds since 1970 as if the clock ran in UTC; only for what is on the calendar.
[[nodiscard]] std::int64_t secondsOfClock(const ClockTime& clock);
// The other way round. Times that no calendar of four digits reaches give the first or the last one it does.
[[nodiscard]] ClockTime clockOfSeconds(std::int64_t seconds);

// Reads every spelling that cameras were seen to use: "2012:01:02 15:04:05", "2012/ 1/ 2  3:04PM",
// "2012-01-02T15:04:05.000+0100", "20120102T150405Z", "Mon Jan 02 15:04:05 2012". Line ends, blanks and NULs around it
// do not matter. No value for anything else, a date without a time of the day included.
[[nodiscard]] std::optional<WrittenDate> writtenDate(std::string_view text);
// The first "2012:01:02 15:04:05" among bytes of any kind, the way Exif writes dates.
[[nodiscard]] std::optional<WrittenDate> firstExifDate(std::string_view bytes);

} // namespace tavrix
