// SPDX-License-Identifier: GPL-3.0-or-later
// Which pictures of a clip an output of even rate shows, and how often.
#pragma once

#include <array>
#include <cstdint>

namespace tavrix::front
{

// ffmpeg's rule for an output of constant rate: a picture that comes more than one place late makes up for it by
// repetitions, one that comes more than one place early is dropped.
class PictureSpacing
{
public:
    explicit PictureSpacing(std::int64_t most) : most_(most) {}

    struct Shown {
        std::int64_t previous = 0; // times of the picture before; of this one, when there is none before
        std::int64_t own = 0;
    };

    // The next picture. Both are counted in pictures of the output, from its start.
    [[nodiscard]] Shown add(double place, double length);

    [[nodiscard]] std::int64_t count() const { return count_; }
    [[nodiscard]] std::int64_t repeated() const { return repeated_; }
    [[nodiscard]] std::int64_t dropped() const { return dropped_; }
    [[nodiscard]] std::int64_t droppedAtEnd() const { return dropped_ + (lastDropped_ ? 1 : 0); }
    // So many repetitions in one place that ffmpeg refuses them.
    [[nodiscard]] bool isAbsurd() const { return absurd_; }

private:
    std::int64_t most_;
    std::int64_t count_ = 0;
    std::int64_t repeated_ = 0;
    std::int64_t dropped_ = 0;
    bool lastDropped_ = false;
    bool absurd_ = false;
};

} // namespace tavrix::front
