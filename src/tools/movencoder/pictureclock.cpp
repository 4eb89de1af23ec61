// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/pictureclock.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace tavrix::movencoder
{

namespace
{

// 33-bit clocks and players' 32-bit durations leave this many ticks a second for clips of any sensible length.
constexpr std::int64_t finestScale = 2'000'000;
// Ticks shorter than this are nothing that anybody could see or hear.
constexpr std::int64_t fineClock = 10'000;
// Pictures that come too late are shown for this part of a usual duration.
constexpr std::int64_t hurry = 8;

} // namespace

std::optional<Fraction> usualRate(Fraction rate)
{
    static constexpr std::array<Fraction, 16> usual{{{10, 1},
                                                     {12, 1},
                                                     {25, 2},
                                                     {15000, 1001},
                                                     {15, 1},
                                                     {24000, 1001},
                                                     {24, 1},
                                                     {25, 1},
                                                     {30000, 1001},
                                                     {30, 1},
                                                     {50, 1},
                                                     {60000, 1001},
                                                     {60, 1},
                                                     {100, 1},
                                                     {120000, 1001},
                                                     {120, 1}}};
    constexpr double near = 1.0 / 300;
    if (rate.num <= 0 || rate.den <= 0) {
        return std::nullopt;
    }
    const double wanted = static_cast<double>(rate.num) / static_cast<double>(rate.den);
    std::optional<Fraction> best;
    double distance = near;
    for (const Fraction& candidate : usual) {
        const double value = static_cast<double>(candidate.num) / static_cast<double>(candidate.den);
        if (std::abs(wanted / value - 1) < distance) {
            distance = std::abs(wanted / value - 1);
            best = candidate;
        }
    }
    return best;
}

PictureClock::PictureClock(Fraction sourceBase, Fraction rate) : scale_(sourceBase.den), tick_(sourceBase.num)
{
    const auto usual = usualRate(rate);
    const std::int64_t common = usual ? std::lcm(sourceBase.den, usual->num) : 0;
    if (common == 0 || common > finestScale) {
        return;
    }
    scale_ = common;
    tick_ = common / sourceBase.den * sourceBase.num;
    step_ = common / usual->num * usual->den;
    const bool fine = sourceBase.den >= fineClock * sourceBase.num;
    tolerance_ = std::min(fine ? tick_ : tick_ / 2, common / 1000);
}

std::int64_t PictureClock::durationOf(std::int64_t duration) const
{
    const std::int64_t ticks = duration * tick_;
    return step_ > 0 && std::abs(ticks - step_) <= std::max(tolerance_, tick_) ? step_ : ticks;
}

// The exact time near this one, or the same time where it is none of the row.
std::int64_t PictureClock::onGrid(std::int64_t time) const
{
    if (step_ == 0 || !anchor_) {
        return time;
    }
    const std::int64_t distance = time - *anchor_;
    const std::int64_t exact = *anchor_ + (2 * distance + step_) / (2 * step_) * step_;
    return std::abs(exact - time) <= tolerance_ ? exact : time;
}

PictureClock::Shown PictureClock::place(std::optional<std::int64_t> time, std::int64_t duration)
{
    const Shown next{last_ ? *last_ + lastDuration_ : 0, durationOf(duration)};
    const std::int64_t own = time ? *time * tick_ : next.time;
    Shown shown{onGrid(own), next.duration};
    const bool exact = anchor_ && step_ > 0 && (shown.time - *anchor_) % step_ == 0;
    if (last_) {
        const std::int64_t earliest = *last_ + std::max<std::int64_t>(1, next.duration / hurry);
        const std::int64_t least = catchingUp_ ? earliest : *last_ + 1;
        catchingUp_ = shown.time < least;
        shown.time = catchingUp_ ? earliest : shown.time;
    }
    if (!catchingUp_ && !exact) {
        anchor_ = shown.time;
    }
    last_ = shown.time;
    lastDuration_ = shown.duration;
    return shown;
}

} // namespace tavrix::movencoder
