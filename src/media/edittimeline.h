// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Edits kept as a list over the source: which stretches of it the movie still shows, in order, and how long.

#include "media/sampletables.h"

#include <cstdint>
#include <vector>

namespace tavrix
{

// A stretch of the source's timeline, all in one movie scale.
struct TimelineSegment {
    std::int64_t start = 0;
    std::int64_t duration = 0;
    std::int64_t shown = 0; // how long the stretch lasts in the movie; differs from duration when it was scaled
};

class EditTimeline
{
public:
    EditTimeline() = default;
    // The whole of a source of that length.
    EditTimeline(std::int64_t duration, std::int32_t timeScale);

    [[nodiscard]] std::int32_t timeScale() const { return timeScale_; }
    [[nodiscard]] std::int64_t duration() const;
    [[nodiscard]] const std::vector<TimelineSegment>& segments() const { return segments_; }
    [[nodiscard]] bool edited() const { return edited_; }

    // Times are rounded to the new scale; their seconds stay. Scales below 1 change nothing.
    void setTimeScale(std::int32_t timeScale);
    // Both take movie times and are clipped to the movie.
    void deleteRange(std::int64_t start, std::int64_t length);
    void scaleRange(std::int64_t start, std::int64_t length, std::int64_t newLength);

private:
    // Makes the instant a border between two segments; returns the index of the segment behind it.
    std::size_t splitAt(std::int64_t time);

    std::vector<TimelineSegment> segments_;
    std::int32_t timeScale_ = 600;
    bool edited_ = false;
};

// One stretch of a track as the movie shows it.
struct TrackPiece {
    std::int64_t shown = 0;       // movie scale
    bool empty = false;           // nothing is shown
    std::int64_t mediaStart = 0;  // media scale
    std::int64_t mediaLength = 0; // media scale; 0 = one picture stands still
};

// value x to / from, rounded to the nearest, saturating; 0 when `from` is not positive.
[[nodiscard]] std::int64_t rescaled(std::int64_t value, std::int64_t to, std::int64_t from);

// What the track shows after the movie's edits; trailing gaps are left out. movieScale is the scale of the source's own
// edit list.
[[nodiscard]] std::vector<TrackPiece> trackPieces(const TrackAtoms& track, std::uint32_t movieScale,
                                                  const EditTimeline& timeline);

// Movie times at which a sample of the track comes up, ascending, each once.
[[nodiscard]] std::vector<std::int64_t> displayTimes(const SampleTable& table, const std::vector<TrackPiece>& pieces);

} // namespace tavrix
