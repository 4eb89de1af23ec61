// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any bytes as a movie file, asks everything that can be asked of it, cuts it and plans a new file.
#include "media/movierewriter.h"

#include <cstdlib>

namespace
{

using namespace tavrix;

// A stretch in front and one in the middle go, the rest is shown longer.
EditTimeline edited(const MovieAtoms& movie)
{
    EditTimeline timeline(static_cast<std::int64_t>(movie.duration), static_cast<std::int32_t>(movie.timeScale));
    timeline.deleteRange(0, timeline.duration() / 5);
    timeline.deleteRange(timeline.duration() / 2, timeline.duration() / 10);
    timeline.setTimeScale(30000);
    timeline.scaleRange(0, timeline.duration(), timeline.duration() / 4 * 5);
    return timeline;
}

void askTracks(const MovieAtoms& movie, const EditTimeline& timeline, std::uint64_t fileSize)
{
    for (const TrackAtoms& track : movie.tracks) {
        const std::optional<SampleTable> table = readSampleTable(track, fileSize);
        const std::vector<TrackPiece> pieces = trackPieces(track, movie.timeScale, timeline);
        if (!table) {
            continue;
        }
        const std::vector<std::int64_t> times = displayTimes(*table, pieces);
        for (std::size_t index = 1; index < times.size(); ++index) {
            if (times[index] <= times[index - 1]) {
                std::abort();
            }
        }
    }
}

void rewrite(const MovieAtoms& movie, const EditTimeline& timeline, std::uint64_t fileSize)
{
    RewriteRequest request{&movie, fileSize, timeline, {}, DisplayScale{1.5, 0.5}};
    request.changes.push_back({PixelSize{640, 480}, "name"});
    const Result<RewritePlan> plan = RewritePlan::make(request);
    if (!plan) {
        return;
    }
    for (const CopyRun& run : plan->copies()) {
        if (run.sourceOffset > fileSize || run.size > fileSize - run.sourceOffset) {
            std::abort();
        }
    }
    if (plan->movieAtom(0).size() != plan->movieAtom(1U << 20).size()) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ByteView bytes(data, size);
    const MovieAtoms movie = readMovieAtoms(readAtOf(bytes), size);
    if (!movie.found) {
        return 0;
    }
    const EditTimeline whole(static_cast<std::int64_t>(movie.duration), static_cast<std::int32_t>(movie.timeScale));
    for (const EditTimeline& timeline : {whole, edited(movie)}) {
        askTracks(movie, timeline, size);
        rewrite(movie, timeline, size);
    }
    return 0;
}
