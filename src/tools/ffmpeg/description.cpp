// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/description.h"

#include "tools/ffmpeg/errorlines.h"
#include "tools/ffmpeg/progresslines.h"
#include "tools/ffmpeg/streamlines.h"

#include <algorithm>

namespace tavrix::front
{

void Description::follow(const std::string& line)
{
    if (const auto stream = streamWithoutParameters(line)) {
        withoutParameters_.insert(*stream);
    }
    followSection(line);
    if (section_ == Section::Input && line.starts_with(' ')) {
        if (const auto stream = describedStream(line)) {
            streams_.insert(*stream);
        }
    }
    // A key is never printed without its value, so these are headings.
    const bool heading = line == "      Metadata:" || line == "      Side data:";
    indentedFurther_ = heading || (indentedFurther_ && line.starts_with("        "));
}

void Description::followSection(const std::string& line)
{
    if (line.starts_with("Input #")) {
        section_ = Section::Input;
        const auto names = line.find(", ");
        const auto end = line.find(", from '");
        if (names != std::string::npos && end != std::string::npos && names < end) {
            showsIdentifiers_ = formatShowsIdentifiers(line.substr(names + 2, end - names - 2));
        }
    } else if (line.starts_with("Output #")) {
        section_ = Section::Output;
    } else if (line == "Stream mapping:") {
        section_ = Section::Mapping;
    } else if (section_ == Section::Mapping ? !line.starts_with(' ') : isProgressLine(line)) {
        section_ = Section::None;
    }
}

bool Description::lacksAllParameters() const
{
    return std::ranges::all_of(streams_, [&](int stream) { return withoutParameters_.contains(stream); });
}

std::string Description::outdented(const std::string& line) const
{
    return indentedFurther_ ? line.substr(2) : line;
}

} // namespace tavrix::front
