// SPDX-License-Identifier: GPL-3.0-or-later
// From the old command line to that of the installed ffmpeg.
#pragma once

#include "tools/ffmpeg/clipsource.h"
#include "tools/ffmpeg/commandline.h"

#include <optional>
#include <string>
#include <string_view>
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

// What differs between runs of the same command line.
struct Dialect {
    bool annexBFilter = true;   // false: h264_mp4toannexb is left out, for a stream that is not H.264
    bool frameRateMode = false; // -fps_mode instead of -vsync, which versions after 7 do not know
    bool mirrors = true;        // false: a mirrored picture is only turned, by versions before 5

    bool operator==(const Dialect&) const = default;
};

// Nothing where it is not asked for or cannot be read.
using Source = std::optional<ClipSource>;

// The installed ffmpeg's arguments, without the program's name. `urls` has one entry per file of `line`.
[[nodiscard]] std::vector<std::string> modernArguments(const CommandLine& line, const FileUrls& urls,
                                                       const Dialect& dialect, const Source& source = {});

// What the run's only output wants of its source, where the source's own facts decide on it; nothing for runs of
// another kind.
[[nodiscard]] std::optional<OutputJob> clipJob(const CommandLine& line, const FileUrls& urls);

// The dialect to try after the installed ffmpeg refused an option ("vsync"); the same one when nothing helps.
[[nodiscard]] Dialect dialectAfterRefusal(const Dialect& dialect, std::string_view refusedOption,
                                          std::string_view version);

// Whether that version of ffmpeg mirrors the picture of a source itself, where it is mirrored.
[[nodiscard]] bool mirrorsPictures(std::string_view version, const Source& source);

// Whether lines of the transcript carry their level and must be sorted by it (-v 3 and more).
[[nodiscard]] bool levelsAreMarked(const CommandLine& line);

// Whether the output's filter h264_mp4toannexb can be refused, so that a second run may be needed.
[[nodiscard]] bool mayRefuseAnnexB(const CommandLine& line);

} // namespace tavrix::front
