// SPDX-License-Identifier: GPL-3.0-or-later
// One run of the tool.
#pragma once

#include <string>
#include <vector>

namespace tavrix::front
{

// Does what the words after the program's name ask for; the exit status.
[[nodiscard]] int runTool(const std::string& startedAs, const std::vector<std::string>& words);

} // namespace tavrix::front
