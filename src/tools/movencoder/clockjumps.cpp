// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/clockjumps.h"

#include <cstdlib>

namespace tavrix::movencoder
{

namespace
{

// The limits of players: a gap of ten seconds may be a gap, but time never runs backwards.
constexpr std::int64_t largestGap = 10'000'000;
constexpr std::int64_t largestStepBack = 100'000;

bool carriesOn(std::int64_t time, std::int64_t expected)
{
    return time >= expected - largestStepBack && time <= expected + largestGap;
}

} // namespace

std::int64_t ClockJumps::offsetOf(int stream, std::int64_t time, std::int64_t duration)
{
    const auto [entry, isNew] = places_.try_emplace(stream);
    Place& place = entry->second;
    if (isNew) {
        place.offset = offsets_.back();
    } else if (!carriesOn(time + place.offset, place.expected)) {
        // Another stream may have been there before: the newest of the known offsets that fits is taken.
        std::int64_t chosen = place.expected - time;
        bool known = false;
        for (auto offset = offsets_.crbegin(); offset != offsets_.crend() && !known; ++offset) {
            known = carriesOn(time + *offset, place.expected);
            chosen = known ? *offset : chosen;
        }
        if (!known) {
            offsets_.push_back(chosen);
        }
        place.offset = chosen;
    }
    place.expected = time + place.offset + duration;
    return place.offset;
}

std::int64_t ClockJumps::offsetOf(int stream) const
{
    const auto place = places_.find(stream);
    return place == places_.end() ? offsets_.back() : place->second.offset;
}

} // namespace tavrix::movencoder
