// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Widths and heights of pictures, by what they are counted in.

#include <cstdint>

namespace tavrix
{

// Whole pixels.
struct PixelSize {
    int width = 0;
    int height = 0;
};

// Pixels with 16 fractional bits, as atoms hold them.
struct FixedSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

} // namespace tavrix
