// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/banner.h"

namespace tavrix::front
{

std::string classicBanner()
{
    return "FFmpeg version " + std::string(classicRevision) + ", Copyright (c) 2000-2010 the FFmpeg developers";
}

std::vector<std::string> usageLines()
{
    return {classicBanner(), "Hyper fast Audio and Video encoder",
            "usage: ffmpeg [options] [[infile options] -i infile]... {[outfile options] outfile}...", "",
            "Use --help for what this tool does, -h for the options of the installed ffmpeg"};
}

std::string helpText()
{
    return "usage: ffmpeg [options] [[infile options] -i infile]... {[outfile options] outfile}...\n"
           "\n"
           "Runs the installed ffmpeg (the first other one in PATH, else /usr/bin/ffmpeg or\n"
           "/usr/local/bin/ffmpeg) for programs that speak the dialect of a build of 2010:\n"
           "\n"
           "  - its options are understood wherever they stood then, and its messages are\n"
           "    printed in its words, on standard error, whatever -v says;\n"
           "  - an output file appears under its name only when it is complete; until then,\n"
           "    and after a failure, whatever stood there is untouched;\n"
           "  - an output that is also an input is refused;\n"
           "  - only local files and pipes are opened, and nothing is asked.\n"
           "\n"
           "Exit status: that of ffmpeg; 1 also when the source could not be read, or the output not\n"
           "be written, in full;\n"
           "127 when no ffmpeg is installed.\n"
           "\n"
           "  --help                 this text\n"
           "  -h, -version, -codecs  passed to the installed ffmpeg as they are\n";
}

std::optional<std::string> installedVersion(std::string_view line)
{
    constexpr std::string_view head = "ffmpeg version ";
    if (!line.starts_with(head)) {
        return std::nullopt;
    }
    line.remove_prefix(head.size());
    return std::string(line.substr(0, line.find_first_of(" ,")));
}

} // namespace tavrix::front
