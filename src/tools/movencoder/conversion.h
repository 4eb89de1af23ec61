#pragma once

// The conversion of one movie.

#include "sys/result.h"
#include "tools/movencoder/damage.h"
#include "tools/movencoder/settings.h"

#include <string>

namespace tavrix::movencoder
{

struct InputMovie {
    std::string name; // for messages
    std::string path; // where it is read: differs for a file that has no name any more
};

// Encodes `input` into the open file `fd`, which will be `output`, and reports the progress. Answers what could not be
// had of the source. A reason of failure begins with the file that it is about; the file `fd` is then of no use.
[[nodiscard]] Result<Damage> convertMovie(const InputMovie& input, const std::string& output, int fd, Format format,
                                          const FormatSettings& settings);

} // namespace tavrix::movencoder
