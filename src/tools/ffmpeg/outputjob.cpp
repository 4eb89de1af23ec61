// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/outputjob.h"

#include "tools/ffmpeg/optionrules.h"

#include <algorithm>
#include <array>

namespace tavrix::front
{

namespace
{

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names)
{
    return std::ranges::find(names, name) != names.end();
}

Treatment treatment(const FileEntry& output, const char* none, std::initializer_list<std::string_view> codecOptions)
{
    if (hasOption(output.options, none)) {
        return Treatment::None;
    }
    Treatment result = Treatment::Encoded;
    for (const Option& option : output.options) {
        if (isOneOf(option.name, codecOptions)) {
            result = option.value == "copy" ? Treatment::Copied : Treatment::Encoded;
        }
    }
    return result;
}

bool choosesAPart(const Option& option)
{
    const std::string name = optionRule(option.name).modernName;
    constexpr std::array<std::string_view, 12> names = {"map",    "ss",       "t",        "to",
                                                        "fs",     "frames:v", "frames:a", "frames",
                                                        "copyts", "lavfi",    "shortest", "filter_complex"};
    return std::ranges::find(names, name) != names.end();
}

} // namespace

bool OutputJob::isMovie() const
{
    return isOneOf(container, {"mov", "mp4", "ipod", "3gp"});
}

OutputJob outputJob(const FileEntry& output, const std::vector<std::string>& muxer)
{
    OutputJob job;
    job.picture = treatment(output, "vn", {"vcodec", "c:v", "codec:v", "c", "codec"});
    job.sound = treatment(output, "an", {"acodec", "c:a", "codec:a", "c", "codec"});
    const auto format = std::ranges::find(muxer, "-f");
    if (format != muxer.end() && format + 1 != muxer.end()) {
        job.container = *(format + 1);
    }
    return job;
}

bool convertsWholeClip(const CommandLine& line)
{
    const bool oneToOne = line.inputs.size() == 1 && line.outputs.size() == 1;
    return oneToOne && line.inputs.front().options.empty() && std::ranges::none_of(line.globals, choosesAPart) &&
           std::ranges::none_of(line.outputs.front().options, choosesAPart);
}

} // namespace tavrix::front
