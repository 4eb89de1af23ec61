// SPDX-License-Identifier: GPL-3.0-or-later
// What the outer structure of an AVI file promises, against what is there.
#pragma once

#include "sys/result.h"

#include <cstdint>
#include <string>

namespace tavrix::media
{

struct RiffScan {
    bool cutOff = false;   // chunks reach beyond the end of the file
    bool hasIndex = false; // behind the media, as announced
    bool announcesIndex = false;
    std::int64_t announcedFrames = 0; // of the first picture stream's header
};

// Reads the headers of the outermost chunks only. The reason of a failure is the system's.
[[nodiscard]] Result<RiffScan> scanRiff(const std::string& path);

} // namespace tavrix::media
