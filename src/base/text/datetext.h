// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Dates as the texts and logs show them.

#include <QString>

namespace tavrix
{

// "yyyy-MM-dd HH:mm:ss +hhmm" in local time, whole seconds. Nothing for a time no calendar reaches.
[[nodiscard]] QString dateText(qint64 secondsSince1970);
// The same of this moment.
[[nodiscard]] QString currentDateText();

// What this machine's clock is ahead of UTC at that time, in seconds; 0 for a time no calendar reaches.
[[nodiscard]] qint64 secondsAheadOfUtc(qint64 secondsSince1970);

// A reading of a clock that ran in this machine's zone: seconds since 1970 as if the zone were UTC.
// The moment when the clock showed it, in seconds since 1970. A reading that the change to summer time leaves out is
// taken for the hour beside it.
[[nodiscard]] qint64 secondsOfLocalReading(qint64 reading);
// The reading in dateText's form; the clock's figures stay as they are. Nothing for a time no calendar reaches.
[[nodiscard]] QString readingText(qint64 reading);

} // namespace tavrix
