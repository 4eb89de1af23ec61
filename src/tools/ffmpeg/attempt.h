// SPDX-License-Identifier: GPL-3.0-or-later
// A start of the installed ffmpeg whose words may be taken back.
#pragma once

#include "sys/result.h"
#include "tools/common/childprocess.h"
#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/dialect.h"
#include "tools/ffmpeg/transcript.h"

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace tavrix::front
{

// A first start is made in the default dialect. Its words are kept back until it is settled that the installed ffmpeg
// refuses nothing: otherwise it is ended, and only the words of a second start, in another dialect, are seen.
class Attempt
{
public:
    enum class Turn {
        First,
        Last, // its words hold, whatever it refuses
    };
    // What both starts of a run are about; everything lives longer than the attempt.
    struct Task {
        const CommandLine& line;
        const TranscriptNames& names;
        const Source& source;
        bool inputCanBeReadAgain = true;
        std::function<void(std::string_view)> hear; // is given every line of ffmpeg's own; may be empty
    };

    Attempt(const Task& task, Turn turn);

    // Runs ffmpeg to its end and prints what it says in the classic dialect.
    void run(SpawnRequest request);

    // The dialect for a second start; nothing where the words of this one hold.
    [[nodiscard]] std::optional<InstalledDialect> otherDialect() const;

    // How ffmpeg ended, or why it could not be started. After `run`.
    [[nodiscard]] const Result<ChildEnd>& end() const { return end_; }
    // Whether ffmpeg has written a line.
    [[nodiscard]] bool hasSpoken() const { return spoken_; }
    [[nodiscard]] const Findings& findings() const { return transcript_.findings(); }

private:
    void hear(std::string_view line, char lineEnd);
    [[nodiscard]] bool isSettled() const;
    void keepUntilSettled(const std::vector<TranscriptLine>& lines);
    void settle();

    Task task_;
    bool first_;
    bool settled_; // what is said is printed at once
    Transcript transcript_;
    std::vector<TranscriptLine> kept_;
    bool spoken_ = false;
    Result<ChildEnd> end_ = Failure{"not started"};
};

} // namespace tavrix::front
