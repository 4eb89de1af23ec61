// SPDX-License-Identifier: GPL-3.0-or-later
// What an output wants of its source's picture and sound.
#pragma once

#include "tools/ffmpeg/commandline.h"

#include <string>
#include <vector>

namespace tavrix::front
{

enum class Treatment { None, Copied, Encoded };

struct OutputJob {
    Treatment picture = Treatment::Encoded;
    Treatment sound = Treatment::Encoded;
    std::string container; // the muxer's name; "" when only ffmpeg knows it

    [[nodiscard]] bool isMovie() const;
};

// `muxer`: the arguments that choose the container.
[[nodiscard]] OutputJob outputJob(const FileEntry& output, const std::vector<std::string>& muxer);

// Whether one clip is converted from its start to its end with the streams that ffmpeg takes by itself: only then the
// clip's own facts say what the output must show.
[[nodiscard]] bool convertsWholeClip(const CommandLine& line);

} // namespace tavrix::front
