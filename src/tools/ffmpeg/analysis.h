// SPDX-License-Identifier: GPL-3.0-or-later
// An analysis in this process: what ffmpeg would say of a clip, and the pictures that it would write.
#pragma once

#include "tools/ffmpeg/analysistask.h"

#include <optional>
#include <string>

namespace tavrix::front
{

struct AnalysisAnswer {
    // What ffmpeg prints behind its banner, in its own words. The output's name, quoted in it, stands between the two.
    std::string said;
    std::string saidBehindName;
    std::string bytes; // of the output; "" where there is none
    int status = 0;
};

struct AnalysisAnswers {
    AnalysisAnswer asked;
    // Beside frames: the picture that is asked for next as a rule, and what was presumed of its task.
    std::optional<AnalysisAnswer> thumbnail;
    std::optional<AnalysisTask> thumbnailTask;
};

// `url` is the source as ffmpeg gets it. Nothing when this is better left to ffmpeg itself.
[[nodiscard]] std::optional<AnalysisAnswers> analyse(const AnalysisTask& task, const std::string& url);

} // namespace tavrix::front
