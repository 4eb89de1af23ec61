// SPDX-License-Identifier: GPL-3.0-or-later
// What ffmpeg prints, in the classic dialect.
//
// Two dialects are named everywhere in this tool. *Classic* is that of one ffmpeg build of 2010: callers write its
// options and read its messages. *Installed* is that of the system's ffmpeg, versions 4 to 7. Arguments go from classic
// to installed, messages from installed to classic.
#pragma once

#include "tools/ffmpeg/description.h"
#include "tools/ffmpeg/findings.h"
#include "tools/ffmpeg/transcriptnames.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::front
{

struct TranscriptLine {
    std::string text;
    char end = '\n';

    bool operator==(const TranscriptLine&) const = default;
};

// Translates line by line, without waiting for more, with two exceptions, which stand at their classic places: the
// stream mapping is held back until the output has been described, and the summary until the last line of progress.
class Transcript
{
public:
    // `levelsMarked`: lines carry "[info] " and the like, and those of the library's debug level are left out.
    Transcript(TranscriptNames names, bool levelsMarked);

    // The lines to print for one line of ffmpeg.
    [[nodiscard]] std::vector<TranscriptLine> translate(std::string_view line, char end);
    // The lines to print after the last one, when ffmpeg has ended with `status`.
    [[nodiscard]] std::vector<TranscriptLine> finish(int status);

    [[nodiscard]] const Findings& findings() const { return findings_; }

private:
    [[nodiscard]] std::optional<std::string> translatedFailure(const std::string& line);
    void translateContent(std::vector<TranscriptLine>& lines, const std::string& line, char end);
    [[nodiscard]] std::string translateOther(const std::string& given);
    [[nodiscard]] std::string nameFailure(const std::string& line) const;
    void keepRemark(const std::string& line);
    void releaseMapping(std::vector<TranscriptLine>& lines);
    void releaseSummary(std::vector<TranscriptLine>& lines);

    TranscriptNames names_;
    bool levelsMarked_;
    Findings findings_;
    Description description_;
    std::vector<std::string> mapping_;
    std::string summary_; // held back; empty: none is
    bool progressEnded_ = false;
    bool failureTold_ = false;
    double knownTime_ = 0;
    std::string remark_; // the last message that may be the reason of a failure
};

} // namespace tavrix::front
