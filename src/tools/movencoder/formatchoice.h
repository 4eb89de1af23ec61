#pragma once

#include "tools/movencoder/settings.h"

#include <optional>
#include <string>

// The batch program starts this tool without a word on the format: the record of the row that it is encoding, kept in
// its preferences, has it.
namespace tavrix::movencoder
{

// The program's preferences file below the user's home.
[[nodiscard]] std::string preferencesPath();

// The format of the record, believed only when the record names this very output and input; nothing otherwise, and for
// preferences that are missing or unreadable.
[[nodiscard]] std::optional<Format> formatOfRunningRow(const std::string& preferences, const std::string& input,
                                                       const std::string& output);

// Whether `input` has the name of a first pass of `output`: in the same folder, with the same extension, and with
// "_MASTER" at the end of its base name.
[[nodiscard]] bool isFirstPassOf(const std::string& output, const std::string& input);

} // namespace tavrix::movencoder
