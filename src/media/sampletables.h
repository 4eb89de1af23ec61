// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Where a track's samples lie in the file and when they are shown.

#include "media/movieatoms.h"

#include <optional>
#include <vector>

namespace tavrix
{

struct Sample {
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
    std::uint32_t duration = 0;         // media scale
    std::int32_t compositionOffset = 0; // media scale
    std::uint32_t chunk = 0;            // index of the chunk that holds it
    std::uint16_t description = 1;      // counted from 1
    bool sync = true;
};

// Uncompressed sound has millions of samples of one unit each; only their chunks are kept.
struct SoundChunk {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t firstSample = 0;
    std::uint32_t samples = 0;
    std::uint32_t description = 1;
};

struct SampleTable {
    bool packed = false;         // chunks are filled, not samples
    std::vector<Sample> samples; // decode order
    std::vector<SoundChunk> chunks;
    std::uint32_t constantSize = 0; // as the size atom tells it; 0 when each sample has its own
    bool hasCompositionOffsets = false;
    bool hasSyncTable = false;
};

// No value when the tables contradict each other or reach past the end of the file.
[[nodiscard]] std::optional<SampleTable> readSampleTable(const TrackAtoms& track, std::uint64_t fileSize);

// Bytes that `samples` samples of constant-size sound take; 0 when not known.
[[nodiscard]] std::uint64_t packedSoundBytes(const DescriptionAtom& description, std::uint32_t constantSize,
                                             std::uint64_t samples);

} // namespace tavrix
