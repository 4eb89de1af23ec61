// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The conversion of one movie.

#include "sys/result.h"
#include "tools/movencoder/settings.h"

#include <cstdint>
#include <string>

namespace tavrix::movencoder
{

struct InputMovie {
    std::string name; // for messages
    std::string path; // where it is read: differs for a file that has no name any more
};

// The account of a conversion.
struct Conversion {
    std::int64_t packetsRead = 0; // of the pictures
    std::int64_t decoded = 0;     // pictures
    std::int64_t damagedPictures = 0;
    std::int64_t written = 0;         // pictures
    std::int64_t strictlyDamaged = 0; // pictures whose damage only a strict decoder finds
};

// Encodes `input` into the open file `fd`, which will be `output`, and reports the progress. A reason of failure begins
// with the file that it is about; the file `fd` is then of no use.
[[nodiscard]] Result<Conversion> convertMovie(const InputMovie& input, const std::string& output, int fd, Format format,
                                              const FormatSettings& settings);

} // namespace tavrix::movencoder
