// SPDX-License-Identifier: GPL-3.0-or-later
// The files of a run, as the installed ffmpeg names them and as the caller does.
#pragma once

#include "tools/ffmpeg/errorlines.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

struct FileName {
    std::string url;   // "file:/proc/self/fd/5"
    std::string shown; // "/home/me/clip.mp4"
};

struct TranscriptNames {
    std::vector<FileName> inputs;
    std::vector<FileName> outputs;

    // The line with the caller's names.
    [[nodiscard]] std::string shownIn(std::string line) const;
    // The line without any of the names, for what is concluded from it: a file may bear the words of a failure.
    [[nodiscard]] std::string removedFrom(std::string line) const;
    // The failure in "<input>: <reason>"; nothing for other lines.
    [[nodiscard]] std::optional<OpenFailure> failureIn(const std::string& line) const;
};

} // namespace tavrix::front
