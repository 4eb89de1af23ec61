#pragma once

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

// The arguments without the program's name. Nothing, with the reason in `error`, for wrong usage.
[[nodiscard]] std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error);
[[nodiscard]] std::string helpText();

} // namespace tavrix::movencoder
