// SPDX-License-Identifier: GPL-3.0-or-later
// From the classic command line to that of the installed ffmpeg.
#pragma once

#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/dialect.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

// Where the files of a run really are, as the installed ffmpeg gets them.
struct FileUrls {
    std::vector<std::string> inputs;
    struct Output {
        std::string url;
        std::vector<std::string> muxer; // arguments that replace the choice of the container by the name
    };
    std::vector<Output> outputs;
};

// The installed ffmpeg's arguments, without the program's name. `urls` has one entry per file of `line`.
[[nodiscard]] std::vector<std::string> installedArguments(const CommandLine& line, const FileUrls& urls,
                                                          const InstalledDialect& dialect, const Source& source = {});

// What the run's only output wants of its source, where the source's own facts decide on it; nothing for runs of
// another kind.
[[nodiscard]] std::optional<OutputJob> clipJob(const CommandLine& line, const FileUrls& urls);

// Whether lines of the transcript carry their level and must be sorted by it (-v 3 and more).
[[nodiscard]] bool levelsAreMarked(const CommandLine& line);

// Whether the output's filter h264_mp4toannexb can be refused, so that a second run may be needed.
[[nodiscard]] bool mayRefuseAnnexB(const CommandLine& line);

} // namespace tavrix::front
