// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/turning.h"

#include <cmath>
#include <numbers>

namespace tavrix::media
{

Turning turningOf(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d)
{
    Turning turning;
    turning.mirrored = double(a) * double(d) - double(b) * double(c) < 0;
    const double side = turning.mirrored ? -1 : 1;
    const double angle = std::atan2(side * double(b), side * double(a)) * 180 / std::numbers::pi;
    turning.degrees = (static_cast<int>(std::lround(angle / 90)) * 90 + 360) % 360;
    return turning;
}

} // namespace tavrix::media
