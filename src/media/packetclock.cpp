// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/packetclock.h"

#include <algorithm>

namespace tavrix::media
{

namespace
{

constexpr double longestGap = 10;
constexpr double longestStepBack = 0.1;

} // namespace

PacketClock::PacketClock(const AVFormatContext& context, double origin)
    : context_(context), origin_(origin), steps_((context.iformat->flags & AVFMT_TS_DISCONT) != 0)
{
}

std::optional<PacketClock::Times> PacketClock::timesOf(const AVPacket& packet)
{
    const auto index = static_cast<std::size_t>(packet.stream_index);
    if (index >= places_.size()) {
        places_.resize(index + 1);
    }
    Place& place = places_[index];
    const double unit = av_q2d(context_.streams[index]->time_base);
    const double duration = static_cast<double>(std::max<std::int64_t>(0, packet.duration)) * unit;
    const bool hasDecoding = packet.dts != AV_NOPTS_VALUE;
    if (!hasDecoding && packet.pts == AV_NOPTS_VALUE) {
        // Some containers tell the time of every few packets only.
        if (!place.next) {
            return std::nullopt;
        }
        const Times times{*place.next, duration};
        place.next = *place.next + duration;
        return times;
    }
    const double stored = static_cast<double>(hasDecoding ? packet.dts : packet.pts) * unit - origin_;
    double decoding = stored + shift_;
    if (steps_ && place.next) {
        const double step = decoding - *place.next;
        if (step > longestGap || step < -longestGap || decoding + longestStepBack < place.latest) {
            shift_ -= step;
            decoding = *place.next;
            ++joins_;
        }
    }
    place.latest = std::max(place.latest, decoding);
    place.next = decoding + duration;
    const double delay =
        packet.pts == AV_NOPTS_VALUE || !hasDecoding ? 0 : static_cast<double>(packet.pts - packet.dts) * unit;
    return Times{decoding + delay, duration};
}

} // namespace tavrix::media
