// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the program and its tools agree on about the name that an output takes, beyond the arguments: these name the
// output as texts and logs show it.

#include "sys/fileidentity.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::publication
{

// The terms, in the environment of a tool: the one file that its output may replace, or no file.
inline constexpr const char* replacesVariable = "TAVRIX_REPLACES";
// The path that the output takes instead of the one among the arguments.
inline constexpr const char* placeVariable = "TAVRIX_PUBLISHES_AS";

struct Terms {
    bool given = false;                      // false: the arguments alone say what may be replaced
    std::optional<FileIdentity> replaceable; // nothing: no file
    std::string place;                       // "": the name among the arguments
};

// The value for `replacesVariable`.
[[nodiscard]] std::string replacesText(const std::optional<FileIdentity>& file);
// Terms that cannot be read let nothing be replaced. Null stands for a variable that is not set.
[[nodiscard]] Terms readTerms(const char* replaces, const char* place);
[[nodiscard]] Terms termsFromEnvironment();

// By these terms what stands there by now must stay: it is not the file that may be replaced.
[[nodiscard]] bool forbid(const Terms& terms, const FileIdentity& standing);

// The line by which a tool tells at its start which file its output will be, whatever its name: the program deletes no
// other one. Without a line end.
[[nodiscard]] std::string outputLine(const struct stat& output);
// Device and inode only; nothing for any other line.
[[nodiscard]] std::optional<FileIdentity> parseOutputLine(std::string_view line);

} // namespace tavrix::publication
