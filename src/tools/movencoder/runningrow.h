// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/movencoder/settings.h"

#include <optional>
#include <string>

// The batch program starts this tool without a word on the row that it is encoding; its preferences have it.
namespace tavrix::movencoder
{

struct RunningRow {
    std::optional<Format> format;
    std::string clip; // the person's clip that the row is about; "" when it is not told
};

// The program's preferences file below the user's home.
[[nodiscard]] std::string preferencesPath();

// The row, believed only when its record names this very output and input; nothing otherwise, and for preferences that
// are missing or unreadable.
[[nodiscard]] std::optional<RunningRow> runningRow(const std::string& preferences, const std::string& input,
                                                   const std::string& output);

// Whether `input` has the name of a first pass of `output`: in the same folder, with the same extension, and with
// "_MASTER" at the end of its base name.
[[nodiscard]] bool isFirstPassOf(const std::string& output, const std::string& input);

} // namespace tavrix::movencoder
