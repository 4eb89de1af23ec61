// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What became of an output, in the user's language.

#include "judge/verdict.h"

#include <QString>

namespace tavrix
{

// The findings in one line, the gravest first; "Incomplete: " stands before those of an incomplete output. "" for a
// whole output without remarks.
[[nodiscard]] QString verdictWords(const judge::Verdict& verdict);

} // namespace tavrix
