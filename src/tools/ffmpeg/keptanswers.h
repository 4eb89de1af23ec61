// SPDX-License-Identifier: GPL-3.0-or-later
// What is known from earlier runs of an analysis: the words of the installed ffmpeg about itself, and a picture made
// beside the frames.
#pragma once

#include "tools/ffmpeg/analysisdelivery.h"
#include "tools/ffmpeg/analysiskeep.h"
#include "tools/ffmpeg/analysistask.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

// For one installed ffmpeg.
class KeptAnswers
{
public:
    KeptAnswers(AnalysisKeep keep, const std::string& program);

    // Its banner, line by line as it prints it; nothing as long as no run has heard it.
    [[nodiscard]] std::optional<std::string> banner() const;
    // Hears the lines of a run; the banner is kept when it is complete.
    void hear(std::string_view line);

    // What the clip is now; an answer is good for that alone. "" for no clip.
    [[nodiscard]] static std::string stateOf(const AnalysisTask& task);
    void storeThumbnail(const AnalysisTask& task, const std::string& state, const AnalysisDelivery& answer) const;
    [[nodiscard]] std::optional<AnalysisDelivery> thumbnail(const AnalysisTask& task) const;

private:
    [[nodiscard]] std::string thumbnailKey(const AnalysisTask& task, const std::string& state) const;

    AnalysisKeep keep_;
    std::string programKey_;
    std::string heard_;
    bool complete_ = false;
};

} // namespace tavrix::front
