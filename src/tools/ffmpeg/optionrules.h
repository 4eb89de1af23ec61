// SPDX-License-Identifier: GPL-3.0-or-later
// What the tool knows about single options of the old command line.
#pragma once

#include <string>
#include <string_view>

namespace tavrix::front
{

// Which file an option belongs to.
enum class OptionSide {
    Global,    // the whole run
    Following, // the next file on the command line
    Output,    // the next output, also when an input stands between
    Shape,     // size, rate and the like: overwritten by what an input file says of itself
    Report,    // asks ffmpeg about itself (-version, -codecs)
};

struct OptionRule {
    OptionSide side = OptionSide::Following;
    bool takesValue = true;
    std::string modernName; // the spelling that ffmpeg 4 to 7 know, without the dash
};

// The rule for an option given without its dash ("vframes", "codec:v"); options that are not known take a value,
// unless another option follows, and belong to the next file.
[[nodiscard]] OptionRule optionRule(std::string_view name);

// Whether an option of this name is in the table (the stream specifier is ignored).
[[nodiscard]] bool isKnownOption(std::string_view name);

} // namespace tavrix::front
