// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Times of a movie: a count of units of 1/timeScale second.

#include <QString>

namespace tavrix
{

struct MediaTime {
    qint64 timeValue = 0;
    qint32 timeScale = 0; // units per second; 0 only in a time that was never set
    qint32 flags = 0;
};

struct MediaTimeRange {
    MediaTime time;
    MediaTime duration;
};

// A time without flags.
[[nodiscard]] MediaTime QTMakeTime(qint64 value, qint32 scale);
// Both as they are, each in its own scale.
[[nodiscard]] MediaTimeRange QTMakeTimeRange(const MediaTime& start, const MediaTime& duration);
// Start plus duration, in the scale of the start.
[[nodiscard]] MediaTime QTTimeRangeEnd(const MediaTimeRange& range);
// "h:mm:ss.ffffff", with a leading "-" when negative.
[[nodiscard]] QString QTStringFromTime(const MediaTime& time);

// Seconds in the precision of the name; 0 for a scale of 0.
[[nodiscard]] double secondsDouble(const MediaTime& time);
[[nodiscard]] float secondsFloat(const MediaTime& time);
// Towards zero, saturating; 0 for what is no number.
[[nodiscard]] qint64 truncated64(double value);
// The same instant in another scale, rounded to the nearest unit, saturating; 0 for a scale of 0.
[[nodiscard]] qint64 valueInScale(const MediaTime& time, qint32 scale);

} // namespace tavrix
