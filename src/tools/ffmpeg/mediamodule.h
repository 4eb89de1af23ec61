// SPDX-License-Identifier: GPL-3.0-or-later
// The seam between the tool and the module with all that needs the media libraries.
#pragma once

#include <string>

namespace tavrix::front
{

// The function of the module: a whole run by the arguments of `main`; its answer is the exit status.
inline constexpr const char* mediaModuleEntry = "tavrixRunWithMedia";
using MediaModuleRun = int(int argc, char** argv);

// The module beside the running program; "" when that cannot be asked.
[[nodiscard]] std::string mediaModulePath();

} // namespace tavrix::front
