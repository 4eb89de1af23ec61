// SPDX-License-Identifier: GPL-3.0-or-later
// A verdict on one line of text, by which the tools tell it to the program on their error stream:
//
//     tavrix-verdict: incomplete ended-early seconds=9.80 of-seconds=20.00 damaged-pictures count=12 from=4.20
//
// The outcome, then each finding as its cause and the fields that say something. A text has everything but letters,
// digits and a few marks escaped as %XX: the line holds no blank, no control character and nothing beyond ASCII that it
// did not put there itself.
#pragma once

#include "judge/verdict.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::judge
{

// Without a line end.
[[nodiscard]] std::string verdictLine(const Verdict& verdict);
// Nothing when the line is no verdict, or one that this version does not know in full. Blanks and a line end behind it
// are passed over.
[[nodiscard]] std::optional<Verdict> parseVerdictLine(std::string_view line);

} // namespace tavrix::judge
