// SPDX-License-Identifier: GPL-3.0-or-later
// Where the installed ffmpeg is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

// The first program named ffmpeg in the folders of `pathVariable`, then in /usr/bin and /usr/local/bin, whose file is
// not among `skipped`: identities, with blanks between. Relative folders are left out. Nothing when there is none.
[[nodiscard]] std::optional<std::string> installedFfmpeg(std::string_view pathVariable, std::string_view skipped);

// "device:inode" of a file, the same under every name it has; empty when it cannot be asked.
[[nodiscard]] std::string fileIdentity(const std::string& path);

// The absolute path under which this program was started.
[[nodiscard]] std::string ownPath(const std::string& startedAs);

} // namespace tavrix::front
