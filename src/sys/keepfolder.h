// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the program and its tools agree on about files that spare a later run work.

namespace tavrix
{

// In the environment of a tool: the private folder where it may leave such files, which goes with the program. Without
// it a tool leaves nothing.
inline constexpr const char* keepVariable = "TAVRIX_KEEPS";

// In the environment of a tool, with any value: it looks at a clip before its turn, says and writes nothing, and leaves
// what it finds in that folder for the run that will ask.
inline constexpr const char* aheadVariable = "TAVRIX_AHEAD";
// What such runs leave begins with this.
inline constexpr const char* aheadPrefix = "kept-ahead-";

} // namespace tavrix
