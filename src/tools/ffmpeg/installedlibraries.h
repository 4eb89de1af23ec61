// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the installed ffmpeg is a program on the libraries that this process has loaded.
#pragma once

#include <string>

namespace tavrix::front
{

// `banner` is what it prints of itself. False in doubt: a script in its place, another build, other versions.
[[nodiscard]] bool standsOnOwnLibraries(const std::string& program, const std::string& banner);

} // namespace tavrix::front
