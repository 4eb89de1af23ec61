// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/judgement.h"

#include "judge/judge.h"
#include "tools/ffmpeg/outputjob.h"

#include <cstdlib>

namespace tavrix::front
{

namespace
{

judge::Way wayOf(Treatment treatment)
{
    switch (treatment) {
    case Treatment::Copied:
        return judge::Way::Copied;
    case Treatment::Encoded:
        return judge::Way::Encoded;
    case Treatment::None:
        break;
    }
    return judge::Way::Left;
}

// "25", "29.97" and "30000/1001".
std::optional<double> rateOf(const std::string& text)
{
    char* end = nullptr;
    const double above = std::strtod(text.c_str(), &end);
    const double below = *end == '/' ? std::strtod(end + 1, nullptr) : 1;
    return above > 0 && below > 0 ? std::optional(above / below) : std::nullopt;
}

} // namespace

std::optional<judge::Verdict> judgement(const CommandLine& line, const RunFiles& files, const Findings& findings)
{
    const auto written = files.writtenFile();
    const auto wanted = clipJob(line, files.urls());
    if (!wanted || !files.readsRegularFile() || !written) {
        return std::nullopt;
    }
    const FileEntry& output = line.outputs.front();
    const OutputJob& job = *wanted;
    judge::Case given;
    given.source = line.inputs.front().name;
    given.output = *written;
    given.asked.picture = wayOf(job.picture);
    given.asked.sound = wayOf(job.sound);
    const auto rate = optionValue(output.options, OptionTreatment::Rate);
    if (rate && job.picture == Treatment::Encoded) {
        given.asked.rate = rateOf(*rate);
    }
    given.writer.decodeErrors = findings.decodeErrors;
    media::silenceLibraries();
    return judge::judge(given);
}

} // namespace tavrix::front
