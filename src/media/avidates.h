// SPDX-License-Identifier: GPL-3.0-or-later
// The date that a camera wrote into an AVI. Free of Qt.
#pragma once

#include "media/atomreader.h"
#include "media/recordingdate.h"

namespace tavrix
{

// Reads the date chunk (IDIT), the camera's own data beside a stream (strd with Exif, Nikon's tags), or the date of the
// information list (ICRD): the first that is a date with a time. Pictures are not read.
[[nodiscard]] ClipDates aviClipDates(const ReadAt& readAt, std::uint64_t fileSize);

} // namespace tavrix
