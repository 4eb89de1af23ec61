// SPDX-License-Identifier: GPL-3.0-or-later
// The source of a clip's conversion, as far as it decides on arguments, on the output's header and on words.
#pragma once

#include "media/cliptags.h"
#include "media/sourcefacts.h"
#include "tools/ffmpeg/copyedits.h"
#include "tools/ffmpeg/outputjob.h"

#include <optional>
#include <string>

namespace tavrix::front
{

struct ClipSource {
    media::SourceFacts facts;
    media::ClipTags tags;
    std::optional<CopyEdits> edits; // what the copy needs beside ffmpeg's own way
};

// Nothing where it is not asked for or cannot be read.
using Source = std::optional<ClipSource>;

// Nothing where the clip cannot be read; ffmpeg itself says why.
[[nodiscard]] Source readClipSource(const std::string& path, const OutputJob& job);

// Puts what the source says of itself, and its edits, into the header of a movie that ffmpeg has just written. Fails
// where the edits, without which the movie would show something else, cannot be told.
[[nodiscard]] Result<void> finishMovie(int descriptor, const ClipSource& source, const OutputJob& job);

// Why no picture of the source can come out ("its pictures are encrypted"); "" when it says nothing of that kind.
[[nodiscard]] std::string unusablePictures(const media::SourceFacts& facts);

} // namespace tavrix::front
