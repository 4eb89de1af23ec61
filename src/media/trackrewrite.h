// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a track becomes in the new file.

#include "media/sampleselection.h"
#include "media/sizes.h"

#include <optional>
#include <string>

namespace tavrix
{

// Changes of one track; members without value keep what the source has.
struct TrackChange {
    std::optional<PixelSize> size; // 0 to 32767
    std::string displayName;       // "" keeps the name
};

// Everything that a new track atom needs beside the source's own.
struct TrackRewrite {
    const TrackAtoms* source = nullptr;
    SelectedTrack selected;
    std::uint32_t mediaTimeScale = 0;
    std::uint64_t shownDuration = 0; // movie scale
    std::uint32_t movieTimeScale = 0;
    TrackChange change;
    bool longOffsets = false; // chunk offsets of 64 bits
};

} // namespace tavrix
