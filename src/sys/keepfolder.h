// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the program and its tools agree on about files that spare a later run work.

namespace tavrix
{

// In the environment of a tool: the private folder where it may leave such files, which goes with the program. Without
// it a tool leaves nothing.
inline constexpr const char* keepVariable = "TAVRIX_KEEPS";

} // namespace tavrix
