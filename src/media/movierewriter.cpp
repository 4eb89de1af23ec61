// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/movierewriter.h"

#include <algorithm>

namespace tavrix
{

namespace
{

__extension__ typedef __int128 WideInteger;

// Length of the source that is shown against how long it is shown, when that is the same all over the movie.
struct Speed {
    std::int64_t source = 1;
    std::int64_t shown = 1;
};

std::optional<Speed> uniformSpeed(const EditTimeline& timeline)
{
    Speed speed{0, 0};
    for (const TimelineSegment& segment : timeline.segments()) {
        speed.source += segment.duration;
        speed.shown += segment.shown;
    }
    if (speed.source <= 0 || speed.shown <= 0) {
        return std::nullopt;
    }
    for (const TimelineSegment& segment : timeline.segments()) {
        const WideInteger difference =
            WideInteger(segment.shown) * speed.source - WideInteger(segment.duration) * speed.shown;
        const WideInteger oneUnit = 2 * WideInteger(std::max(speed.source, speed.shown));
        if (difference > oneUnit || difference < -oneUnit) {
            return std::nullopt;
        }
    }
    return speed;
}

// Few players honour the rate of an edit. A movie that was scaled as a whole therefore gets other media time scales.
std::uint32_t scaledMediaTimeScale(std::uint32_t timeScale, const std::optional<Speed>& speed)
{
    if (!speed || speed->source == speed->shown) {
        return timeScale;
    }
    const std::int64_t scaled = rescaled(timeScale, speed->source, speed->shown);
    return scaled >= 1 && scaled <= INT32_MAX ? static_cast<std::uint32_t>(scaled) : timeScale;
}

Result<void> rewritable(const MovieAtoms& movie)
{
    if (!movie.found || movie.damaged) {
        return Failure{"the movie header is missing or damaged"};
    }
    if (movie.compressed || movie.fragmented) {
        return Failure{"the movie header is compressed or in fragments"};
    }
    if (!std::ranges::all_of(movie.tracks, &TrackAtoms::selfContained)) {
        return Failure{"media lie in other files"};
    }
    return {};
}

std::optional<TrackRewrite> rewrittenTrack(const TrackAtoms& track, const RewriteRequest& request,
                                           const std::optional<Speed>& speed)
{
    const std::optional<SampleTable> table = readSampleTable(track, request.fileSize);
    if (!table || track.mediaTimeScale == 0) {
        return std::nullopt;
    }
    TrackRewrite rewrite;
    rewrite.source = &track;
    rewrite.movieTimeScale = static_cast<std::uint32_t>(request.timeline.timeScale());
    rewrite.mediaTimeScale = scaledMediaTimeScale(track.mediaTimeScale, speed);
    const std::vector<TrackPiece> pieces = trackPieces(track, request.movie->timeScale, request.timeline);
    rewrite.selected = selectSamples(*table, pieces, track.mediaType == "soun");
    for (const TrackPiece& piece : rewrite.selected.pieces) {
        rewrite.shownDuration += static_cast<std::uint64_t>(piece.shown);
    }
    return rewrite;
}

} // namespace

Result<RewritePlan> RewritePlan::make(const RewriteRequest& request)
{
    if (const Result<void> allowed = rewritable(*request.movie); !allowed) {
        return Failure{allowed.reason()};
    }
    RewritePlan plan;
    plan.movie_ = request.movie;
    plan.timeScale_ = static_cast<std::uint32_t>(request.timeline.timeScale());
    plan.displayScale_ = request.displayScale;
    plan.edited_ = request.timeline.edited();
    const std::optional<Speed> speed = uniformSpeed(request.timeline);
    for (std::size_t index = 0; index < request.movie->tracks.size(); ++index) {
        std::optional<TrackRewrite> track = rewrittenTrack(request.movie->tracks[index], request, speed);
        if (!track) {
            return Failure{"a sample table is damaged"};
        }
        if (track->selected.runs.empty()) {
            continue;
        }
        if (index < request.changes.size()) {
            track->change = request.changes[index];
        }
        plan.duration_ = std::max(plan.duration_, track->shownDuration);
        plan.tracks_.push_back(std::move(*track));
    }
    if (plan.tracks_.empty()) {
        return Failure{"nothing is left of the movie"};
    }
    plan.layOut();
    // Tables that point at the same bytes over and over would fill the disk.
    if (plan.dataSize_ / 2 > request.fileSize) {
        return Failure{"the sample tables overlap"};
    }
    return plan;
}

// Media keep the order of the source, which interleaves sound and picture.
void RewritePlan::layOut()
{
    std::vector<CopyRun*> order;
    for (TrackRewrite& track : tracks_) {
        for (CopyRun& run : track.selected.runs) {
            order.push_back(&run);
        }
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const CopyRun* a, const CopyRun* b) { return a->sourceOffset < b->sourceOffset; });
    for (CopyRun* run : order) {
        run->newOffset = dataSize_;
        dataSize_ += run->size;
        copies_.push_back(*run);
    }
    constexpr std::uint64_t mostShortOffset = 0xE0000000U; // leaves room for the header in front of the data
    for (TrackRewrite& track : tracks_) {
        track.longOffsets = dataSize_ > mostShortOffset;
    }
}

std::vector<std::uint8_t> RewritePlan::movieAtom(std::uint64_t dataStart) const
{
    AtomWriter writer;
    writer.begin(atomType("moov"));
    std::size_t trackIndex = 0;
    for (const Atom& atom : childAtoms(movie_->bytes)) {
        if (atom.type == atomType("mvhd")) {
            writeMovieHeader(writer, atom.payload, timeScale_, duration_, displayScale_, edited_);
        } else if (atom.type == atomType("trak")) {
            const TrackAtoms& source = movie_->tracks[trackIndex++];
            for (const TrackRewrite& track : tracks_) {
                if (track.source == &source) {
                    writeTrack(writer, track, dataStart);
                }
            }
        } else {
            writer.raw(atom.whole);
        }
    }
    writer.end();
    return writer.bytes();
}

} // namespace tavrix
