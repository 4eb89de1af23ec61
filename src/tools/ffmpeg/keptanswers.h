// SPDX-License-Identifier: GPL-3.0-or-later
// What is known from earlier runs of an analysis: the words of the installed ffmpeg about itself, a picture made beside
// the frames, and the frames of clips that were looked at before their turn.
#pragma once

#include "tools/ffmpeg/analysisdelivery.h"
#include "tools/ffmpeg/analysiskeep.h"
#include "tools/ffmpeg/analysistask.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

// The answer to a run that asks for frames, and to the one that asks for a picture after it.
struct FramesAnswer {
    AnalysisDelivery frames;
    // Nothing where no picture is asked for as a rule.
    std::optional<AnalysisTask> thumbnailTask;
    std::optional<AnalysisDelivery> thumbnail;
};

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

    // Whoever asks for the frames waits a while, as long as the result is open.
    [[nodiscard]] Descriptor announceFrames(const AnalysisTask& task) const;
    void storeFrames(const AnalysisTask& task, const std::string& state, const FramesAnswer& answer) const;
    // Waits for a look at the clip that is under way. Nothing when none has left an answer.
    [[nodiscard]] std::optional<FramesAnswer> frames(const AnalysisTask& task) const;
    void forgetFrames(const AnalysisTask& task) const;

private:
    [[nodiscard]] std::string answerKey(const AnalysisTask& task, const std::string& state) const;
    [[nodiscard]] std::string framesName(const AnalysisTask& task) const;

    AnalysisKeep keep_;
    std::string programKey_;
    std::string heard_;
    bool complete_ = false;
};

} // namespace tavrix::front
