// SPDX-License-Identifier: GPL-3.0-or-later
// When a clip was recorded: the dates that it holds, and the choice among them. Free of Qt.
#pragma once

#include "media/writtendate.h"

#include <cstdint>
#include <optional>

namespace tavrix
{

// Who wrote a movie's header: phones and programs count in UTC, most cameras in their own local time.
enum class HeaderWriter { Camera, Phone, Program };

// What a clip says about its recording.
struct ClipDates {
    std::optional<ClockTime> pictureStream;  // AVCHD's date beside the pictures, by the camera's clock
    std::optional<WrittenDate> creationDate; // Apple's creation date and what stands in for it in user data
    std::optional<std::int64_t> movieHeader; // seconds since 1970 as written, in UTC or in the camera's time
    std::optional<WrittenDate> aviDate;      // AVI's date chunk, or what the camera put beside it
    HeaderWriter writer = HeaderWriter::Camera;
    double length = 0; // seconds, 0 when not known
};

// A time of this machine: seconds since 1970, and what the local clock is ahead of UTC then, in seconds.
struct SystemTime {
    std::int64_t seconds = 0;
    std::int64_t ahead = 0;
};

enum class DateOrigin { PictureStream, CreationDate, MovieHeader, AviDate };

// A clock's reading counts as this machine's local time, so that it is named as the camera showed it; a moment is a
// point in time, which the local clock shows in its own way.
struct RecordingDate {
    DateOrigin origin = DateOrigin::MovieHeader;
    bool isMoment = false;
    std::int64_t seconds = 0; // of a moment since 1970; of a clock's reading as secondsOfClock

    bool operator==(const RecordingDate&) const = default;
};

// The first of the clip's dates that can be true: the order is that of ClipDates, and nothing was recorded before 1990
// or in the future. A movie header's time is read the way that agrees with the file's own date (within the clip's
// length and two minutes); where both ways do or none does, as UTC for phones and programs and as local time for
// cameras. No value when the clip says nothing.
[[nodiscard]] std::optional<RecordingDate> recordingDate(const ClipDates& clip, std::optional<SystemTime> fileDate,
                                                         const SystemTime& now);

} // namespace tavrix
