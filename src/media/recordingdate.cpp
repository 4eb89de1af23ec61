// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/recordingdate.h"

#include <cmath>

namespace tavrix
{

namespace
{

// No camera of the kinds that are read here is older.
constexpr std::int64_t firstOfJanuary1990 = 631152000;
constexpr std::int64_t closeEnough = 120;
constexpr double longestClip = 30.0 * 86400;

bool isPossible(const RecordingDate& date, const SystemTime& now)
{
    const std::int64_t latest = date.isMoment ? now.seconds : now.seconds + now.ahead;
    return date.seconds >= firstOfJanuary1990 && date.seconds <= latest;
}

std::optional<RecordingDate> fromClock(DateOrigin origin, const std::optional<ClockTime>& clock)
{
    if (!clock) {
        return std::nullopt;
    }
    return RecordingDate{origin, false, secondsOfClock(*clock)};
}

std::optional<RecordingDate> fromWritten(DateOrigin origin, const std::optional<WrittenDate>& date)
{
    if (!date) {
        return std::nullopt;
    }
    const std::int64_t clock = secondsOfClock(date->clock);
    if (!date->zoneMinutes) {
        return RecordingDate{origin, false, clock};
    }
    return RecordingDate{origin, true, clock - std::int64_t{*date->zoneMinutes} * 60};
}

// The header's time may be that of the recording's start or of its end.
bool agrees(std::int64_t header, std::int64_t file, double length)
{
    const double known = length > 0 && length < longestClip ? length : 0;
    return std::abs(header - file) <= static_cast<std::int64_t>(known) + closeEnough;
}

// Whether the header's time is a moment; otherwise it is the camera's local time.
bool countsInUtc(const ClipDates& clip, std::int64_t header, const std::optional<SystemTime>& fileDate)
{
    if (fileDate) {
        const bool moment = agrees(header, fileDate->seconds, clip.length);
        const bool local = agrees(header, fileDate->seconds + fileDate->ahead, clip.length);
        if (moment != local) {
            return moment;
        }
    }
    return clip.writer != HeaderWriter::Camera;
}

std::optional<RecordingDate> fromHeader(const ClipDates& clip, const std::optional<SystemTime>& fileDate,
                                        const SystemTime& now)
{
    // A value outside the calendar would overflow the sums below.
    if (!clip.movieHeader || *clip.movieHeader < firstOfJanuary1990 ||
        *clip.movieHeader > now.seconds + std::int64_t{86400} * 2) {
        return std::nullopt;
    }
    return RecordingDate{DateOrigin::MovieHeader, countsInUtc(clip, *clip.movieHeader, fileDate), *clip.movieHeader};
}

} // namespace

std::optional<RecordingDate> recordingDate(const ClipDates& clip, std::optional<SystemTime> fileDate,
                                           const SystemTime& now)
{
    for (const std::optional<RecordingDate>& date :
         {fromClock(DateOrigin::PictureStream, clip.pictureStream),
          fromWritten(DateOrigin::CreationDate, clip.creationDate), fromHeader(clip, fileDate, now),
          fromWritten(DateOrigin::AviDate, clip.aviDate)}) {
        if (date && isPossible(*date, now)) {
            return date;
        }
    }
    return std::nullopt;
}

} // namespace tavrix
