// SPDX-License-Identifier: GPL-3.0-or-later
// The beginning of a run, and all of one that needs none of the media libraries.
#pragma once

#include "tools/ffmpeg/analysistask.h"
#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/keptanswers.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavrix::front
{

// The files of this tool that already stand in the chain: two copies in PATH would start each other for ever.
inline constexpr const char* chainVariable = "TAVRIX_FFMPEG_FRONT";
inline constexpr int notInstalled = 127;

// A run that is still to be done.
struct StartedRun {
    std::string program; // the installed ffmpeg
    std::string self;
    std::string chain;
    CommandLine line;
    std::optional<AnalysisTask> task;
    std::optional<KeptAnswers> kept; // where a task may be done without the installed ffmpeg
    bool isAhead = false;            // the clip's frames are looked at before they are asked for
    Descriptor announced;            // of such a run, by the first in this process to start it
};

// The exit status of a run that has been done.
using Start = std::variant<int, StartedRun>;

[[nodiscard]] Start startRun(const std::string& startedAs, const std::vector<std::string>& words);

} // namespace tavrix::front
