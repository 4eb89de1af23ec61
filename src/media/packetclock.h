// SPDX-License-Identifier: GPL-3.0-or-later
// The times of a clip's packets on one timeline.
#pragma once

#include "media/avowners.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavrix::media
{

// Where a recorder's clock steps (ten seconds forth, a tenth of a second back), what follows is put behind what was
// before: the rule of ffmpeg for transport and program streams. In other containers the times are taken as they are.
class PacketClock
{
public:
    PacketClock(const AVFormatContext& context, double origin);

    struct Times {
        double shown = 0;    // seconds
        double duration = 0; // seconds; 0 when unknown
    };
    // Nothing for a packet without any time.
    [[nodiscard]] std::optional<Times> timesOf(const AVPacket& packet);
    [[nodiscard]] std::int64_t joins() const { return joins_; }

private:
    struct Place {
        std::optional<double> next; // decoding time that the next packet should have
        double latest = 0;
    };

    const AVFormatContext& context_;
    double origin_;
    bool steps_;
    double shift_ = 0;
    std::int64_t joins_ = 0;
    std::vector<Place> places_;
};

} // namespace tavrix::media
