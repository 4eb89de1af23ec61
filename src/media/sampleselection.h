// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which samples of a track the edits still need, and the track's tables for them.

#include "media/edittimeline.h"

namespace tavrix
{

// Bytes that go from the source into the new file as they are.
struct CopyRun {
    std::uint64_t sourceOffset = 0;
    std::uint64_t size = 0;
    std::uint64_t samples = 0;
    std::uint32_t description = 1;
    std::uint64_t newOffset = 0; // filled in when the new file is laid out
};

struct SelectedTrack {
    SampleTable table;               // the kept samples; empty when packed
    std::uint64_t packedSamples = 0; // of uncompressed sound
    std::vector<CopyRun> runs;       // chunks of the new track, in decode order
    std::vector<TrackPiece> pieces;  // in terms of the kept samples
    std::uint64_t mediaDuration = 0; // of the kept samples
};

// Keeps what the pieces show, and what decoding them needs: back to the key picture before, or a little sound before.
[[nodiscard]] SelectedTrack selectSamples(const SampleTable& table, const std::vector<TrackPiece>& pieces,
                                          bool isSound);

} // namespace tavrix
