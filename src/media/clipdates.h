// SPDX-License-Identifier: GPL-3.0-or-later
// The dates that a clip holds, whatever its container. Free of Qt.
#pragma once

#include "media/atomreader.h"
#include "media/recordingdate.h"

namespace tavrix
{

// Of a transport stream only this much is read; a camera repeats its date with every key picture.
inline constexpr std::uint64_t streamHead = std::uint64_t{4} << 20;

// The container is known by its first bytes, not by the file's name. Reads a transport stream's first megabytes, of the
// others the header alone. Nothing for files of other kinds and for damaged ones.
[[nodiscard]] ClipDates clipDates(const ReadAt& readAt, std::uint64_t fileSize);

} // namespace tavrix
