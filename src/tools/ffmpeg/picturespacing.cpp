// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/picturespacing.h"

#include <algorithm>
#include <cmath>

namespace tavrix::front
{

PictureSpacing::Shown PictureSpacing::add(double place, double length)
{
    constexpr double tolerance = 1.1;
    constexpr std::int64_t mostRepetitions = 900;
    double late = place - static_cast<double>(count_);
    const double until = late + length;
    if (late < 0 && until > 0) {
        late = 0;
    }
    std::int64_t all = 1;
    std::int64_t previous = 0;
    if (until < -tolerance) {
        all = 0;
    } else if (until > tolerance) {
        all = std::llrint(static_cast<float>(until));
        previous = late > tolerance ? std::llrint(static_cast<float>(late - 0.6)) : 0;
    }
    all = std::min(all, most_ - count_);
    previous = std::min(previous, all);
    if (previous == 0 && lastDropped_) {
        ++dropped_;
    }
    const std::int64_t once = (previous > 0 && lastDropped_ ? 1 : 0) + (all > previous ? 1 : 0);
    if (all > once) {
        absurd_ = absurd_ || all > mostRepetitions;
        repeated_ += all - once;
    }
    lastDropped_ = all == previous;
    count_ += all;
    return {previous, all - previous};
}

} // namespace tavrix::front
