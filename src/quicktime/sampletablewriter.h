#pragma once

#include "quicktime/atomwriter.h"
#include "quicktime/trackrewrite.h"

namespace tavrix
{

// The sample table atom of a rewritten track; `stbl` is the source's, whose descriptions are kept.
void writeSampleTable(AtomWriter& writer, ByteView stbl, const TrackRewrite& track, std::uint64_t dataStart);

} // namespace tavrix
