// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the installed ffmpeg is a program on the libraries that this process has loaded.
#pragma once

#include <string>

namespace tavrix::front
{

// `banner` is what it prints of itself. False in doubt: a script in its place, another build, other versions.
[[nodiscard]] bool standsOnOwnLibraries(const std::string& program, const std::string& banner);

// Whether its file asks for libraries of these names: the weaker part of that, without a word from the program.
[[nodiscard]] bool namesOwnLibraries(const std::string& program);

} // namespace tavrix::front
