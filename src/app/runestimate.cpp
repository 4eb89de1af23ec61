// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/runestimate.h"

#include <algorithm>

namespace tavrix
{

namespace
{

constexpr double thousand = 1000;
// Before these the beginning of an encode, which is no work yet, would count for too much.
constexpr double enoughFraction = 0.02;
constexpr double enoughSeconds = 2;
constexpr double leastSeconds = 0.2; // for a speed

} // namespace

void RunEstimate::beginBatch()
{
    *this = RunEstimate();
}

void RunEstimate::beginPass(qint64 now, const ClipWork& clip, int pass, int passes)
{
    if (pass <= 1) {
        clipBegan_ = now;
    }
    clip_ = {std::max(1.0, clip.seconds), clip.out};
    pass_ = pass;
    passes_ = passes;
    fraction_ = 0;
    passBegan_ = now;
    progressAt_ = now;
    pausedAt_ = -1;
}

void RunEstimate::progress(qint64 now, double fraction)
{
    fraction_ = fraction;
    progressAt_ = now;
}

// A pause shifts the beginnings: what follows looks as if it had not been.
void RunEstimate::setPaused(qint64 now, bool paused)
{
    if (paused == (pausedAt_ >= 0)) {
        return;
    }
    if (!paused) {
        const qint64 pause = now - pausedAt_;
        clipBegan_ += pause;
        passBegan_ += pause;
        progressAt_ += pause;
    }
    pausedAt_ = paused ? now : -1;
}

void RunEstimate::endClip(qint64 now, bool converted)
{
    if (converted && pass_ > 0) {
        Pace& pace = paces_[clip_.out];
        pace.taken += worked(now, clipBegan_);
        pace.secondPass += pass_ > 1 ? worked(now, passBegan_) : 0;
        pace.seconds += clip_.seconds;
    }
    pass_ = 0;
}

double RunEstimate::worked(qint64 now, qint64 since) const
{
    return static_cast<double>((pausedAt_ >= 0 ? pausedAt_ : now) - since) / thousand;
}

std::optional<double> RunEstimate::passLeft(qint64 now) const
{
    const double taken = static_cast<double>(progressAt_ - passBegan_) / thousand;
    if (pass_ == 0 || fraction_ < enoughFraction || taken < enoughSeconds) {
        return std::nullopt;
    }
    const double left = taken / fraction_ * (1 - fraction_);
    return std::max(0.0, left - worked(now, progressAt_));
}

std::optional<double> RunEstimate::clipLeft(qint64 now) const
{
    const std::optional<double> left = passLeft(now);
    if (!left || pass_ == passes_) {
        return left;
    }
    const Pace pace = paces_.value(clip_.out);
    return pace.seconds > 0 ? std::optional(*left + pace.secondPass / pace.seconds * clip_.seconds) : std::nullopt;
}

double RunEstimate::speed(qint64 now) const
{
    const double taken = worked(now, passBegan_);
    return pass_ == 0 || taken < leastSeconds ? 0 : fraction_ * clip_.seconds / taken;
}

// Seconds of work for a second of a clip of that format.
std::optional<double> RunEstimate::paceOf(int out, std::optional<double> clipLeft, qint64 now) const
{
    const Pace pace = paces_.value(out);
    if (pace.seconds > 0) {
        return pace.taken / pace.seconds;
    }
    if (clipLeft && out == clip_.out) {
        return (worked(now, clipBegan_) + *clipLeft) / clip_.seconds;
    }
    return std::nullopt;
}

std::optional<double> RunEstimate::batchLeft(qint64 now, const QList<ClipWork>& waiting) const
{
    const std::optional<double> running = clipLeft(now);
    if (!running) {
        return std::nullopt;
    }
    double left = *running;
    for (const ClipWork& clip : waiting) {
        const std::optional<double> pace = paceOf(clip.out, running, now);
        if (!pace) {
            return std::nullopt;
        }
        left += *pace * std::max(1.0, clip.seconds);
    }
    return left;
}

} // namespace tavrix
