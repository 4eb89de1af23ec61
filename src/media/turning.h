// SPDX-License-Identifier: GPL-3.0-or-later
// How a display matrix turns and mirrors a picture.
#pragma once

#include <cstdint>

namespace tavrix::media
{

// What a player does with a stored picture: first it mirrors it left to right, then it turns it clockwise.
struct Turning {
    int degrees = 0; // 0, 90, 180 or 270
    bool mirrored = false;

    // Whether width and height change places.
    [[nodiscard]] bool swapsSides() const { return degrees == 90 || degrees == 270; }
    bool operator==(const Turning&) const = default;
};

// Of the matrix x' = a x + c y, y' = b x + d y, where y points down; other angles count as the nearest of the four.
[[nodiscard]] Turning turningOf(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d);

} // namespace tavrix::media
