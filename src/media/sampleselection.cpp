// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/sampleselection.h"

#include <algorithm>

namespace tavrix
{

namespace
{

// Compressed sound packets overlap: the first ones after a jump decode only with those before them.
constexpr std::size_t soundPreroll = 2;

// Samples or chunks [first, last) with the media time at which they start in the old and the new track.
struct KeptRange {
    std::size_t first = 0;
    std::size_t last = 0;
    std::int64_t oldStart = 0;
    std::int64_t newStart = 0;
};

struct PieceRange {
    std::size_t first = 0;
    std::size_t last = 0; // equal to first when the piece needs nothing
};

std::vector<KeptRange> merged(std::vector<PieceRange> needed)
{
    std::sort(needed.begin(), needed.end(), [](const PieceRange& a, const PieceRange& b) { return a.first < b.first; });
    std::vector<KeptRange> ranges;
    for (const PieceRange& need : needed) {
        if (need.last <= need.first) {
            continue;
        }
        if (!ranges.empty() && need.first <= ranges.back().last) {
            ranges.back().last = std::max(ranges.back().last, need.last);
        } else {
            ranges.push_back({need.first, need.last, 0, 0});
        }
    }
    return ranges;
}

// Moves the pieces onto the kept samples; a piece without any of them becomes a gap.
std::vector<TrackPiece> shifted(const std::vector<TrackPiece>& pieces, const std::vector<PieceRange>& needed,
                                const std::vector<KeptRange>& ranges)
{
    std::vector<TrackPiece> result = pieces;
    for (std::size_t index = 0; index < result.size(); ++index) {
        TrackPiece& piece = result[index];
        if (piece.empty) {
            continue;
        }
        const PieceRange& need = needed[index];
        const auto range = std::find_if(ranges.begin(), ranges.end(), [&need](const KeptRange& kept) {
            return need.last > need.first && need.first >= kept.first && need.last <= kept.last;
        });
        if (range == ranges.end()) {
            piece.empty = true;
        } else {
            piece.mediaStart += range->newStart - range->oldStart;
        }
    }
    while (!result.empty() && result.back().empty) {
        result.pop_back();
    }
    return result;
}

class SampleChooser
{
public:
    SampleChooser(const SampleTable& table, bool isSound) : samples_(table.samples), isSound_(isSound)
    {
        decodeTimes_.reserve(samples_.size() + 1);
        std::int64_t time = 0;
        for (std::size_t index = 0; index < samples_.size(); ++index) {
            decodeTimes_.push_back(time);
            const std::int64_t offset = samples_[index].compositionOffset;
            leastOffset_ = index == 0 ? offset : std::min(leastOffset_, offset);
            mostOffset_ = index == 0 ? offset : std::max(mostOffset_, offset);
            longest_ = std::max<std::int64_t>(longest_, samples_[index].duration);
            time += samples_[index].duration;
        }
        decodeTimes_.push_back(time);
    }

    [[nodiscard]] PieceRange needed(const TrackPiece& piece) const
    {
        const std::int64_t end = piece.mediaStart + std::max<std::int64_t>(piece.mediaLength, 1);
        // Only samples decoded near the piece can be shown in it.
        std::size_t index = firstAt(piece.mediaStart - mostOffset_ - longest_);
        const std::size_t stop = firstAt(end - leastOffset_);
        PieceRange range{samples_.size(), 0};
        std::int64_t earliest = end;
        for (; index < stop; ++index) {
            const std::int64_t shown = shownAt(index);
            if (shown >= end || shown + std::max<std::int64_t>(samples_[index].duration, 1) <= piece.mediaStart) {
                continue;
            }
            range.first = std::min(range.first, index);
            range.last = index + 1;
            earliest = std::min(earliest, shown);
        }
        if (range.last <= range.first) {
            return {0, 0};
        }
        range.first = decodableFrom(range.first, earliest);
        return range;
    }

    [[nodiscard]] std::int64_t decodeTime(std::size_t index) const { return decodeTimes_[index]; }

private:
    [[nodiscard]] std::int64_t shownAt(std::size_t index) const
    {
        return decodeTimes_[index] + samples_[index].compositionOffset;
    }

    [[nodiscard]] std::size_t firstAt(std::int64_t decodeTime) const
    {
        const auto end = decodeTimes_.end() - 1;
        return static_cast<std::size_t>(std::lower_bound(decodeTimes_.begin(), end, decodeTime) - decodeTimes_.begin());
    }

    // Pictures shown before their key picture lean on the one before it.
    [[nodiscard]] std::size_t decodableFrom(std::size_t index, std::int64_t earliestShown) const
    {
        if (isSound_) {
            return index - std::min(index, soundPreroll);
        }
        while (index > 0 && !(samples_[index].sync && shownAt(index) <= earliestShown)) {
            --index;
        }
        return index;
    }

    const std::vector<Sample>& samples_;
    std::vector<std::int64_t> decodeTimes_;
    std::int64_t leastOffset_ = 0;
    std::int64_t mostOffset_ = 0;
    std::int64_t longest_ = 0;
    bool isSound_;
};

void appendRun(std::vector<CopyRun>& runs, const Sample& sample, bool continues)
{
    if (continues && runs.back().sourceOffset + runs.back().size == sample.offset &&
        runs.back().description == sample.description) {
        runs.back().size += sample.size;
        ++runs.back().samples;
        return;
    }
    runs.push_back({sample.offset, sample.size, 1, sample.description, 0});
}

SelectedTrack selectedSamples(const SampleTable& table, const std::vector<TrackPiece>& pieces, bool isSound)
{
    const SampleChooser chooser(table, isSound);
    std::vector<PieceRange> needed;
    needed.reserve(pieces.size());
    for (const TrackPiece& piece : pieces) {
        needed.push_back(piece.empty ? PieceRange{} : chooser.needed(piece));
    }
    std::vector<KeptRange> ranges = merged(needed);
    SelectedTrack selected;
    selected.table.constantSize = table.constantSize;
    selected.table.hasCompositionOffsets = table.hasCompositionOffsets;
    selected.table.hasSyncTable = table.hasSyncTable;
    std::int64_t time = 0;
    for (KeptRange& range : ranges) {
        range.oldStart = chooser.decodeTime(range.first);
        range.newStart = time;
        for (std::size_t index = range.first; index < range.last; ++index) {
            const Sample& sample = table.samples[index];
            const bool continues = index > range.first && table.samples[index - 1].chunk == sample.chunk;
            appendRun(selected.runs, sample, continues);
            selected.table.samples.push_back(sample);
        }
        time += chooser.decodeTime(range.last) - range.oldStart;
    }
    selected.mediaDuration = static_cast<std::uint64_t>(time);
    selected.pieces = shifted(pieces, needed, ranges);
    return selected;
}

PieceRange neededChunks(const std::vector<SoundChunk>& chunks, const TrackPiece& piece)
{
    const std::int64_t end = piece.mediaStart + std::max<std::int64_t>(piece.mediaLength, 1);
    const auto first = std::partition_point(chunks.begin(), chunks.end(), [&piece](const SoundChunk& chunk) {
        return static_cast<std::int64_t>(chunk.firstSample + chunk.samples) <= piece.mediaStart;
    });
    const auto last = std::partition_point(first, chunks.end(), [end](const SoundChunk& chunk) {
        return static_cast<std::int64_t>(chunk.firstSample) < end;
    });
    return {static_cast<std::size_t>(first - chunks.begin()), static_cast<std::size_t>(last - chunks.begin())};
}

SelectedTrack selectedChunks(const SampleTable& table, const std::vector<TrackPiece>& pieces)
{
    std::vector<PieceRange> needed;
    needed.reserve(pieces.size());
    for (const TrackPiece& piece : pieces) {
        needed.push_back(piece.empty ? PieceRange{} : neededChunks(table.chunks, piece));
    }
    std::vector<KeptRange> ranges = merged(needed);
    SelectedTrack selected;
    selected.table.packed = true;
    selected.table.constantSize = table.constantSize;
    for (KeptRange& range : ranges) {
        range.oldStart = static_cast<std::int64_t>(table.chunks[range.first].firstSample);
        range.newStart = static_cast<std::int64_t>(selected.packedSamples);
        for (std::size_t index = range.first; index < range.last; ++index) {
            const SoundChunk& chunk = table.chunks[index];
            selected.runs.push_back({chunk.offset, chunk.size, chunk.samples, chunk.description, 0});
            selected.packedSamples += chunk.samples;
        }
    }
    selected.mediaDuration = selected.packedSamples;
    selected.pieces = shifted(pieces, needed, ranges);
    return selected;
}

} // namespace

SelectedTrack selectSamples(const SampleTable& table, const std::vector<TrackPiece>& pieces, bool isSound)
{
    return table.packed ? selectedChunks(table, pieces) : selectedSamples(table, pieces, isSound);
}

} // namespace tavrix
