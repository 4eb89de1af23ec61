// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"
#include "tools/movencoder/settings.h"

#include <optional>
#include <string>
#include <vector>

// The command line.
namespace tavrix::movencoder
{

struct Options {
    bool help = false;
    std::string settings;
    std::string input;
    std::string output;
    std::optional<Format> format; // asked for by name; wins over everything else
};

// The arguments without the program's name; a failure is wrong usage.
[[nodiscard]] Result<Options> parseOptions(const std::vector<std::string>& arguments);
[[nodiscard]] std::string helpText();

} // namespace tavrix::movencoder
