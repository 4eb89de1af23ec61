// From the old command line to that of the installed ffmpeg.
#pragma once

#include "tools/ffmpeg/commandline.h"

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

    bool operator==(const Dialect&) const = default;
};

// The installed ffmpeg's arguments, without the program's name. `urls` has one entry per file of `line`.
[[nodiscard]] std::vector<std::string> modernArguments(const CommandLine& line, const FileUrls& urls,
                                                       const Dialect& dialect);

// The dialect to try after the installed ffmpeg refused an option ("vsync"); the same one when nothing helps.
[[nodiscard]] Dialect dialectAfterRefusal(const Dialect& dialect, std::string_view refusedOption,
                                          std::string_view version);

// Whether lines of the transcript carry their level and must be sorted by it (-v 3 and more).
[[nodiscard]] bool levelsAreMarked(const CommandLine& line);

// Whether the output's filter h264_mp4toannexb can be refused, so that a second run may be needed.
[[nodiscard]] bool mayRefuseAnnexB(const CommandLine& line);

} // namespace tavrix::front
