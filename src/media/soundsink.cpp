// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/soundsink.h"

#include <algorithm>
#include <cmath>

namespace tavrix
{

SoundSink::SoundSink(const EditTimeline& timeline, int sampleRate, int channels, Write write)
    : channels_(channels), write_(std::move(write)), previous_(static_cast<std::size_t>(channels), 0)
{
    for (const TimelineSegment& segment : timeline.segments()) {
        Stretch stretch;
        stretch.start = rescaled(segment.start, sampleRate, timeline.timeScale());
        stretch.length = rescaled(segment.start + segment.duration, sampleRate, timeline.timeScale()) - stretch.start;
        stretch.shown = rescaled(segment.shown, sampleRate, timeline.timeScale());
        if (segment.shown == segment.duration) {
            stretch.shown = stretch.length;
        }
        if (stretch.length > 0 && stretch.shown > 0) {
            segments_.push_back(stretch);
        }
    }
}

bool SoundSink::add(std::int64_t position, std::span<const std::int16_t> samples)
{
    const auto channels = static_cast<std::size_t>(channels_);
    const auto frames = static_cast<std::int64_t>(samples.size() / channels);
    const std::int64_t from = std::max(position_ - position, std::int64_t(0));
    if (from >= frames) {
        return true;
    }
    if (!addSilence(position + from)) {
        return false;
    }
    pending_.clear();
    for (std::int64_t frame = from; frame < frames && !finished(); ++frame) {
        addFrame(samples.subspan(static_cast<std::size_t>(frame) * channels, channels));
    }
    return pending_.empty() || write_(pending_);
}

bool SoundSink::addSilence(std::int64_t upTo)
{
    const std::vector<std::int16_t> silence(static_cast<std::size_t>(channels_), 0);
    constexpr std::size_t flushAt = std::size_t(1) << 16;
    pending_.clear();
    while (position_ < upTo && !finished()) {
        // Nothing of the source is heard before the stretch begins.
        if (position_ < segments_[segment_].start) {
            position_ = std::min(upTo, segments_[segment_].start);
            continue;
        }
        addFrame(silence);
        if (pending_.size() >= flushAt) {
            if (!write_(pending_)) {
                return false;
            }
            pending_.clear();
        }
    }
    position_ = std::max(position_, upTo);
    return pending_.empty() || write_(pending_);
}

void SoundSink::addFrame(std::span<const std::int16_t> frame)
{
    const std::int64_t position = position_++;
    const Stretch& stretch = segments_[segment_];
    if (position < stretch.start) {
        return;
    }
    const std::int64_t offset = position - stretch.start;
    writeUpTo(stretch, offset, frame);
    std::copy(frame.begin(), frame.end(), previous_.begin());
    if (offset + 1 >= stretch.length) {
        // The last frames of a slowed stretch lie behind its last sample.
        while (written_ < stretch.shown) {
            pending_.insert(pending_.end(), frame.begin(), frame.end());
            ++written_;
        }
        ++segment_;
        written_ = 0;
    }
}

// Frames of the movie that lie up to this frame of the source, between it and the one before.
void SoundSink::writeUpTo(const Stretch& stretch, std::int64_t offset, std::span<const std::int16_t> frame)
{
    const double step = static_cast<double>(stretch.length) / static_cast<double>(stretch.shown);
    while (written_ < stretch.shown) {
        const double place = static_cast<double>(written_) * step;
        if (place > static_cast<double>(offset)) {
            break;
        }
        const double weight = offset == 0 ? 1.0 : place - static_cast<double>(offset - 1);
        for (std::size_t channel = 0; channel < frame.size(); ++channel) {
            const double value = previous_[channel] * (1.0 - weight) + frame[channel] * weight;
            pending_.push_back(static_cast<std::int16_t>(std::lround(value)));
        }
        ++written_;
    }
}

} // namespace tavrix
