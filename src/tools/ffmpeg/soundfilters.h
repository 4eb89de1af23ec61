// SPDX-License-Identifier: GPL-3.0-or-later
// Filters that make two channels of any source at its own level.
#pragma once

#include "media/sourcefacts.h"

#include <string>

namespace tavrix::front
{

// For an output of two channels; "" where ffmpeg's own way is right (stereo, or channels without a known place).
[[nodiscard]] std::string twoChannelFilters(const media::StreamFacts& sound);

} // namespace tavrix::front
