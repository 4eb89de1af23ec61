// SPDX-License-Identifier: GPL-3.0-or-later
// Says of an output whether it holds what it should, by reading it and its source. It is not the code that wrote it.
#pragma once

#include "judge/compare.h"
#include "judge/verdict.h"

#include <string>

namespace tavrix::judge
{

struct Case {
    std::string source; // a regular file
    std::string output; // also "/proc/self/fd/N"
    Asked asked;
    WriterCounts writer;
};

// Reads both files once, decodes the first and the last pictures of the output, and decodes the source as well only
// where that leaves doubts. A file that takes a minute without giving a packet is judged as not readable.
[[nodiscard]] Verdict judge(const Case& givenCase);
// The same of an output that holds a part of its source, given what was read of that part.
[[nodiscard]] Verdict judgePart(const Case& givenCase, const media::Span& part, media::Reading source);

} // namespace tavrix::judge
