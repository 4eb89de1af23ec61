// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Atoms of a new movie header, made from those of the source: what is not changed is copied byte for byte.

#include "media/atomwriter.h"
#include "media/trackrewrite.h"

#include <optional>

namespace tavrix
{

// Scale of the whole movie's display.
struct DisplayScale {
    double x = 1;
    double y = 1;
};

// `payload` is the source's header. Times that 32 bits cannot hold make it a version-1 atom.
void writeMovieHeader(AtomWriter& writer, ByteView payload, std::uint32_t timeScale, std::uint64_t duration,
                      const std::optional<DisplayScale>& scale, bool edited);
// Chunk offsets are the runs' new offsets plus dataStart.
void writeTrack(AtomWriter& writer, const TrackRewrite& track, std::uint64_t dataStart);

} // namespace tavrix
