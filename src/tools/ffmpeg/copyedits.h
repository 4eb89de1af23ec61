// SPDX-License-Identifier: GPL-3.0-or-later
// Edit lists of movies whose pictures are copied: what a player shows of the source is what the copy shows.
#pragma once

#include "media/headerchange.h"
#include "media/sourcefacts.h"
#include "sys/result.h"
#include "tools/ffmpeg/outputjob.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

// How the edits of a source get into the copy. ffmpeg itself keeps a start that is hidden, and nothing else.
struct CopyEdits {
    enum class Way {
        CutEnd,  // packets behind the last shown picture are left out; the copy's own edit list hides what is needed
                 // for decoding the last ones
        OwnList, // all packets are copied, and the copy gets the source's list
    };
    Way way = Way::CutEnd;
    std::uint32_t movieScale = 0;   // of the entries' durations
    std::uint32_t mediaScale = 0;   // of the entries' media times
    std::int64_t firstPicture = 0;  // media time of the first packet's picture
    std::vector<EditEntry> entries; // the source's, without what nothing is shown of any stream
    double shownSeconds = 0;        // end of the longest stream
    int pictureStream = 0;          // of the source
    std::optional<int> soundStream;
};

// Nothing where ffmpeg's own way is right: no copy of pictures into a movie, no edit but a hidden start, or pictures
// that stand alone, of which it copies exactly those that are shown.
[[nodiscard]] std::optional<CopyEdits> copyEdits(const std::string& path, const media::SourceFacts& facts,
                                                 const OutputJob& job);

// The change of the header that the copy still needs; fails where the copy is not what was expected.
[[nodiscard]] Result<HeaderChange> editsOfCopy(const CopyEdits& edits, const MovieAtoms& copy, std::uint64_t fileSize);

} // namespace tavrix::front
