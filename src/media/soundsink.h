// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Turns the sound of a source into the sound of its edited movie.

#include "media/edittimeline.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tavrix
{

class SoundSink
{
public:
    // Receives interleaved samples of the movie; false stops.
    using Write = std::function<bool(std::span<const std::int16_t>)>;

    SoundSink(const EditTimeline& timeline, int sampleRate, int channels, Write write);

    // Interleaved samples that belong at that frame of the source's timeline. A gap before them becomes silence; what
    // overlaps earlier samples, or lies before 0, is dropped. False when writing failed.
    bool add(std::int64_t position, std::span<const std::int16_t> samples);
    // True when nothing behind the last position can be heard any more.
    [[nodiscard]] bool finished() const { return segment_ >= segments_.size(); }

private:
    struct Stretch {
        std::int64_t start = 0; // frames of the source
        std::int64_t length = 0;
        std::int64_t shown = 0; // frames of the movie
    };

    void addFrame(std::span<const std::int16_t> frame);
    bool addSilence(std::int64_t upTo);
    void writeUpTo(const Stretch& stretch, std::int64_t offset, std::span<const std::int16_t> frame);

    std::vector<Stretch> segments_;
    std::size_t segment_ = 0;
    std::int64_t position_ = 0; // next frame of the source
    std::int64_t written_ = 0;  // frames of the current stretch
    int channels_;
    Write write_;
    std::vector<std::int16_t> previous_;
    std::vector<std::int16_t> pending_;
};

} // namespace tavrix
