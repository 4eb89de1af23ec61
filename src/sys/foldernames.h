// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a folder holds.

#include "sys/descriptor.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix
{

// The names in an open folder, without "." and "..", in no order, all read before anything is done with them: a folder
// that changes while it is read may hide some. No value, with errno, when it cannot be read.
[[nodiscard]] std::optional<std::vector<std::string>> namesIn(const Descriptor& folder);

} // namespace tavrix
