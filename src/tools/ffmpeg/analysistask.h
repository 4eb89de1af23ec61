// SPDX-License-Identifier: GPL-3.0-or-later
// The runs that look at a clip and can be done without the installed ffmpeg.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

struct AnalysisTask {
    enum class Kind {
        Frames,      // the first pictures as YUV4MPEG
        Thumbnail,   // the first picture as JPEG
        Description, // nothing but what is said of the clip
    };
    Kind kind = Kind::Description;
    std::string source;
    int width = 0; // pixels
    int height = 0;
    int pictures = 0;

    bool operator==(const AnalysisTask&) const = default;
};

// The task behind the words after the program's name; nothing for a command line of any other form, down to the order
// of its options.
[[nodiscard]] std::optional<AnalysisTask> analysisTask(const std::vector<std::string>& words);

} // namespace tavrix::front
