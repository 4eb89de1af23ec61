// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How the sound starts against the picture, by two ways of reading, and whether these agree.

#include "inspect/inspection.h"
#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Offsets from -20 to 20 ms count as none: that is less than a picture lasts.
inline constexpr int unnoticedOffsetMs = 20;
[[nodiscard]] int noticedOffset(int milliseconds);

// Both ways tell the same, small offsets counting as none. No value when one of them is unknown.
[[nodiscard]] std::optional<bool> offsetsAgree(const SoundOffset& offset);

// One entry for each of the sound streams: from the transcript of a run with time stamps, and from the movie's tracks
// (null: there is no movie).
[[nodiscard]] QList<SoundOffset> soundOffsets(int soundStreams, const QString& transcript, const Movie* movie);

} // namespace tavrix
