// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Jumps of a recorder's clock: the streams of a recording that goes on with another clock stay together.

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tavrix::movencoder
{

// A recording that was stopped and continued, or joined from several, has a clock that suddenly tells another time. The
// rest is moved so that the first stream that arrives there carries on without a gap; all others are moved by the same
// amount, whenever they arrive, as pictures and sound would part otherwise. Small steps are left alone: each stream
// keeps to the clock then.
class ClockJumps
{
public:
    // What to add to the times of a packet. All numbers are microseconds; `time` is the packet's decoding time.
    [[nodiscard]] std::int64_t offsetOf(int stream, std::int64_t time, std::int64_t duration);
    // The same for a packet without a time.
    [[nodiscard]] std::int64_t offsetOf(int stream) const;

private:
    struct Place {
        std::int64_t expected = 0; // where the next packet belongs, moved
        std::int64_t offset = 0;
    };
    std::unordered_map<int, Place> places_;
    std::vector<std::int64_t> offsets_{0};
};

} // namespace tavrix::movencoder
