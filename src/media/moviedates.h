// SPDX-License-Identifier: GPL-3.0-or-later
// The dates that a QuickTime, MP4 or 3GP file holds, and who wrote them. Free of Qt.
#pragma once

#include "media/atomreader.h"
#include "media/movieatoms.h"
#include "media/recordingdate.h"

namespace tavrix
{

// Reads the movie's header, its user data and keys, and the head of the first H.264 sample. A file that is damaged or
// is no movie gives what can be read of it, or nothing.
[[nodiscard]] ClipDates movieClipDates(const ReadAt& readAt, std::uint64_t fileSize);

// What the parts say by themselves: `moov` is the payload of the movie atom, `brand` the file's major brand or 0.
[[nodiscard]] ClipDates datesOfMovieAtom(ByteView moov, std::uint32_t brand);

} // namespace tavrix
