// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Pixel formats of the FFmpeg libraries.

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace tavrix::media
{

// The "J" formats of Motion-JPEG say their range in their name; the scaler warns of them and wants it said separately.
[[nodiscard]] AVPixelFormat plainPixelFormat(int format);

} // namespace tavrix::media
