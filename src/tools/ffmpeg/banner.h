// SPDX-License-Identifier: GPL-3.0-or-later
// What the tool says of itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::front
{

// The revision of the build whose dialect is the classic one: the first with the filter "setdar".
inline constexpr std::string_view classicRevision = "git-N-25800-g0000000";

// The first line of every transcript.
[[nodiscard]] std::string classicBanner();

// The lines printed for a run without arguments.
[[nodiscard]] std::vector<std::string> usageLines();

// The text for --help.
[[nodiscard]] std::string helpText();

// The version named in the installed ffmpeg's first line ("ffmpeg version 5.1.9-0+deb12u1 Copyright ..."); nothing for
// any other line.
[[nodiscard]] std::optional<std::string> installedVersion(std::string_view line);

} // namespace tavrix::front
