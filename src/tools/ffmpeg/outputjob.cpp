// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/outputjob.h"

#include <algorithm>

namespace tavrix::front
{

namespace
{

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names)
{
    return std::ranges::find(names, name) != names.end();
}

Treatment treatment(const FileEntry& output, OptionTreatment none, OptionTreatment codec)
{
    if (hasOption(output.options, none)) {
        return Treatment::None;
    }
    Treatment result = Treatment::Encoded;
    for (const Option& option : output.options) {
        const OptionTreatment chooses = optionRule(option.name).treatment;
        if (chooses == codec || chooses == OptionTreatment::EveryCodec) {
            result = option.value == "copy" ? Treatment::Copied : Treatment::Encoded;
        }
    }
    return result;
}

bool choosesAPart(const Option& option)
{
    switch (optionRule(option.name).treatment) {
    case OptionTreatment::Part:
    case OptionTreatment::FrameCount:
    case OptionTreatment::DottedMap:
    case OptionTreatment::FilterGraph:
        return true;
    default:
        return false;
    }
}

} // namespace

bool OutputJob::isMovie() const
{
    return isOneOf(container, {"mov", "mp4", "ipod", "3gp"});
}

OutputJob outputJob(const FileEntry& output, const std::vector<std::string>& muxer)
{
    OutputJob job;
    job.picture = treatment(output, OptionTreatment::NoPicture, OptionTreatment::PictureCodec);
    job.sound = treatment(output, OptionTreatment::NoSound, OptionTreatment::SoundCodec);
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
