// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The part of a new movie header that says where its samples lie.

#include "media/atomwriter.h"
#include "media/trackrewrite.h"

namespace tavrix
{

// The sample table atom of a rewritten track; `stbl` is the source's, whose descriptions are kept.
void writeSampleTable(AtomWriter& writer, ByteView stbl, const TrackRewrite& track, std::uint64_t dataStart);

} // namespace tavrix
