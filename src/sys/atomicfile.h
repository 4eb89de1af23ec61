// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small files that appear whole.

#include "sys/result.h"

#include <string>
#include <string_view>
#include <sys/types.h>

namespace tavrix
{

// Puts a new file with these bytes in the place of what stands there, at once and after they have reached the disk; the
// mode is narrowed by the user's mask. What is there and no regular file, a link included, is refused. The old file is
// untouched when it fails.
[[nodiscard]] Result<void> replaceFile(const std::string& path, std::string_view bytes, mode_t mode);

} // namespace tavrix
