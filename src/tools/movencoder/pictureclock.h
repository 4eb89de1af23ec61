// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The output's times of the pictures: in order, and exactly a rate apart where the source means that rate.

#include <cstdint>
#include <optional>

namespace tavrix::movencoder
{

// Positive terms, or 0/1 for unknown.
struct Fraction {
    std::int64_t num;
    std::int64_t den;
};

// The usual rate that is nearest to `rate` (pictures a second) and within a third of a percent of it; nothing for a
// rate that is none of them.
[[nodiscard]] std::optional<Fraction> usualRate(Fraction rate);

// A container's clock is often too coarse for a rate: at 90000 ticks a second the pictures of 60000/1001 are 1501 and
// 1502 ticks apart in turn, which editors take for a variable rate. Pictures whose times are those of a usual rate, as
// far as such a clock can tell them, get the exact ones; nothing is moved by more than a tick of a fine clock or half a
// tick of a coarse one, and a picture that does not fit keeps its time and starts a row of its own. Where time steps
// back, as at the seams of joined recordings, the pictures that come too late are shown in quick succession and all
// others keep their time, as the sound does.
class PictureClock
{
public:
    // The source's time base (seconds a tick, above 0) and its rate (pictures a second, 0/1 when unknown).
    PictureClock(Fraction sourceBase, Fraction rate);

    // Ticks a second of the output's times.
    [[nodiscard]] std::int64_t scale() const { return scale_; }

    struct Shown {
        std::int64_t time;
        std::int64_t duration;
    };
    // The next picture: time (nothing when the source does not tell) and duration in the source's time base, the answer
    // in the output's. Times rise.
    [[nodiscard]] Shown place(std::optional<std::int64_t> time, std::int64_t duration);
    // A duration in the source's time base, in the output's.
    [[nodiscard]] std::int64_t durationOf(std::int64_t duration) const;

private:
    [[nodiscard]] std::int64_t onGrid(std::int64_t time) const;

    std::int64_t scale_;
    std::int64_t tick_;          // of the source's clock, in the output's
    std::int64_t step_ = 0;      // from picture to picture at the usual rate; 0: there is none
    std::int64_t tolerance_ = 0; // how far a time may be from the exact one
    std::optional<std::int64_t> anchor_;
    std::optional<std::int64_t> last_;
    std::int64_t lastDuration_ = 0;
    bool catchingUp_ = false;
};

} // namespace tavrix::movencoder
