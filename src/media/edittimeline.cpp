// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/edittimeline.h"

#include <algorithm>

namespace tavrix
{

namespace
{

__extension__ typedef __int128 WideInteger;

// A stretch of the source's timeline as the source's own edit list fills it.
struct SourceEdit {
    std::int64_t start = 0; // movie scale of the timeline
    std::int64_t end = 0;
    std::int64_t mediaTime = 0; // -1 = empty
    std::int32_t rate = 65536;
};

std::vector<SourceEdit> sourceEdits(const TrackAtoms& track, std::uint32_t movieScale, std::int32_t timeScale)
{
    const std::int64_t whole =
        track.mediaDuration != 0
            ? rescaled(static_cast<std::int64_t>(track.mediaDuration), timeScale, track.mediaTimeScale)
            : rescaled(static_cast<std::int64_t>(track.duration), timeScale, movieScale);
    if (track.edits.empty()) {
        return {{0, whole, 0, 65536}};
    }
    std::vector<SourceEdit> edits;
    std::int64_t position = 0;
    for (const EditEntry& entry : track.edits) {
        const std::int64_t start = rescaled(position, timeScale, movieScale);
        const bool toTheEnd = entry.duration == 0 && track.edits.size() == 1;
        const auto duration = static_cast<std::int64_t>(entry.duration);
        position = std::min(position + duration, longestTime);
        const std::int64_t end = toTheEnd ? whole : rescaled(position, timeScale, movieScale);
        edits.push_back({start, end, entry.mediaTime, entry.rate});
    }
    return edits;
}

std::int64_t mediaDistance(std::int64_t movieTime, const SourceEdit& edit, const TrackAtoms& track,
                           std::int32_t timeScale)
{
    const std::int64_t distance = rescaled(movieTime, track.mediaTimeScale, timeScale);
    return edit.rate == 65536 ? distance : rescaled(distance, edit.rate, 65536);
}

void append(std::vector<TrackPiece>& pieces, const TrackPiece& piece)
{
    if (piece.shown <= 0) {
        return;
    }
    if (!pieces.empty()) {
        TrackPiece& last = pieces.back();
        const bool sameSpeed =
            WideInteger(last.mediaLength) * piece.shown == WideInteger(piece.mediaLength) * last.shown;
        const bool follows = !last.empty && !piece.empty && last.mediaLength > 0 && sameSpeed &&
                             last.mediaStart + last.mediaLength == piece.mediaStart;
        if ((last.empty && piece.empty) || follows) {
            last.shown += piece.shown;
            last.mediaLength += piece.mediaLength;
            return;
        }
    }
    pieces.push_back(piece);
}

TrackPiece gap(std::int64_t shown)
{
    TrackPiece piece;
    piece.shown = shown;
    piece.empty = true;
    return piece;
}

} // namespace

std::int64_t rescaled(std::int64_t value, std::int64_t to, std::int64_t from)
{
    if (from <= 0) {
        return 0;
    }
    if (to == from) {
        return value;
    }
    const WideInteger product = WideInteger(value) * to;
    const WideInteger half = from / 2;
    const WideInteger result = (product < 0 ? product - half : product + half) / from;
    // Two such values can still be added.
    constexpr WideInteger most = WideInteger(1) << 61;
    return static_cast<std::int64_t>(std::clamp(result, -most, most));
}

EditTimeline::EditTimeline(std::int64_t duration, std::int32_t timeScale) : timeScale_(std::max(timeScale, 1))
{
    const std::int64_t length = std::max<std::int64_t>(duration, 0);
    segments_.push_back({0, length, length});
}

std::int64_t EditTimeline::duration() const
{
    std::int64_t total = 0;
    for (const TimelineSegment& segment : segments_) {
        total += segment.shown;
    }
    return total;
}

void EditTimeline::setTimeScale(std::int32_t timeScale)
{
    if (timeScale < 1 || timeScale == timeScale_) {
        return;
    }
    // Borders are converted rather than lengths, so that rounding does not add up.
    std::int64_t shownEnd = 0;
    std::int64_t newShownEnd = 0;
    for (TimelineSegment& segment : segments_) {
        const std::int64_t newStart = rescaled(segment.start, timeScale, timeScale_);
        const std::int64_t newEnd = rescaled(segment.start + segment.duration, timeScale, timeScale_);
        shownEnd += segment.shown;
        const std::int64_t newShown = rescaled(shownEnd, timeScale, timeScale_) - newShownEnd;
        segment = {newStart, newEnd - newStart, newShown};
        newShownEnd += newShown;
    }
    timeScale_ = timeScale;
    edited_ = true;
}

std::size_t EditTimeline::splitAt(std::int64_t time)
{
    std::int64_t position = 0;
    for (std::size_t index = 0; index < segments_.size(); ++index) {
        const TimelineSegment segment = segments_[index];
        if (time <= position) {
            return index;
        }
        if (time < position + segment.shown) {
            const std::int64_t before = time - position;
            const std::int64_t sourceBefore = rescaled(before, segment.duration, segment.shown);
            segments_[index] = {segment.start, sourceBefore, before};
            segments_.insert(segments_.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                             {segment.start + sourceBefore, segment.duration - sourceBefore, segment.shown - before});
            return index + 1;
        }
        position += segment.shown;
    }
    return segments_.size();
}

void EditTimeline::deleteRange(std::int64_t start, std::int64_t length)
{
    const std::int64_t total = duration();
    const std::int64_t from = std::clamp<std::int64_t>(start, 0, total);
    const auto to = static_cast<std::int64_t>(std::clamp<WideInteger>(WideInteger(start) + length, from, total));
    if (to <= from) {
        return;
    }
    const auto first = static_cast<std::ptrdiff_t>(splitAt(from));
    const auto last = static_cast<std::ptrdiff_t>(splitAt(to));
    segments_.erase(segments_.begin() + first, segments_.begin() + last);
    edited_ = true;
}

void EditTimeline::scaleRange(std::int64_t start, std::int64_t length, std::int64_t newLength)
{
    const std::int64_t total = duration();
    const std::int64_t from = std::clamp<std::int64_t>(start, 0, total);
    const std::int64_t to = from + std::clamp<std::int64_t>(length, 0, total - from);
    if (to <= from || newLength < 0) {
        return;
    }
    const std::size_t first = splitAt(from);
    const std::size_t last = splitAt(to);
    std::int64_t shownEnd = 0;
    std::int64_t newShownEnd = 0;
    for (std::size_t index = first; index < last; ++index) {
        shownEnd += segments_[index].shown;
        const std::int64_t newShown = rescaled(shownEnd, newLength, to - from) - newShownEnd;
        segments_[index].shown = newShown;
        newShownEnd += newShown;
    }
    edited_ = true;
}

std::vector<TrackPiece> trackPieces(const TrackAtoms& track, std::uint32_t movieScale, const EditTimeline& timeline)
{
    const std::int32_t scale = timeline.timeScale();
    const std::vector<SourceEdit> edits = sourceEdits(track, movieScale, scale);
    std::vector<TrackPiece> pieces;
    for (const TimelineSegment& segment : timeline.segments()) {
        const std::int64_t segmentEnd = segment.start + segment.duration;
        std::int64_t position = segment.start;
        const auto shownUpTo = [&segment](std::int64_t time) {
            return rescaled(time - segment.start, segment.shown, segment.duration);
        };
        for (const SourceEdit& edit : edits) {
            const std::int64_t from = std::max(edit.start, position);
            const std::int64_t to = std::min(edit.end, segmentEnd);
            if (to <= from) {
                continue;
            }
            append(pieces, gap(shownUpTo(from) - shownUpTo(position)));
            TrackPiece piece = gap(shownUpTo(to) - shownUpTo(from));
            if (edit.mediaTime >= 0) {
                piece.empty = false;
                piece.mediaStart = edit.mediaTime + mediaDistance(from - edit.start, edit, track, scale);
                piece.mediaLength =
                    edit.mediaTime + mediaDistance(to - edit.start, edit, track, scale) - piece.mediaStart;
            }
            append(pieces, piece);
            position = to;
        }
        append(pieces, gap(segment.shown - shownUpTo(position)));
    }
    while (!pieces.empty() && pieces.back().empty) {
        pieces.pop_back();
    }
    return pieces;
}

std::vector<std::int64_t> displayTimes(const SampleTable& table, const std::vector<TrackPiece>& pieces)
{
    struct Shown {
        std::int64_t start;
        std::int64_t end;
    };
    std::vector<Shown> shown;
    shown.reserve(table.samples.size());
    std::int64_t decodeTime = 0;
    for (const Sample& sample : table.samples) {
        const std::int64_t start = decodeTime + sample.compositionOffset;
        shown.push_back({start, start + sample.duration});
        decodeTime += sample.duration;
    }
    std::sort(shown.begin(), shown.end(), [](const Shown& a, const Shown& b) { return a.start < b.start; });
    std::vector<std::int64_t> times;
    std::int64_t position = 0;
    for (const TrackPiece& piece : pieces) {
        const std::int64_t mediaEnd = piece.mediaStart + std::max<std::int64_t>(piece.mediaLength, 1);
        auto sample = std::partition_point(shown.begin(), shown.end(),
                                           [&piece](const Shown& s) { return s.start < piece.mediaStart; });
        // A sample that began before the edit is the first picture of it.
        if (sample != shown.begin() && std::prev(sample)->end > piece.mediaStart) {
            --sample;
        }
        for (; !piece.empty && sample != shown.end() && sample->start < mediaEnd; ++sample) {
            const std::int64_t into = std::max<std::int64_t>(sample->start - piece.mediaStart, 0);
            const std::int64_t time =
                position + (piece.mediaLength > 0 ? rescaled(into, piece.shown, piece.mediaLength) : 0);
            if (times.empty() || time > times.back()) {
                times.push_back(time);
            }
        }
        position += piece.shown;
    }
    return times;
}

} // namespace tavrix
