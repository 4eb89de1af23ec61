// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace tavrix::movencoder
{

enum ExitStatus {
    exitDone = 0,
    exitFailed = 1,
    exitUsage = 2,
};

// The whole tool: the arguments without the program's name, the exit status. Messages go to standard error.
[[nodiscard]] int run(const std::vector<std::string>& arguments);

} // namespace tavrix::movencoder
