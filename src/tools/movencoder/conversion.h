#pragma once

#include "tools/movencoder/settings.h"

#include <string>

namespace tavrix::movencoder
{

struct InputMovie {
    std::string name; // for messages
    std::string path; // where it is read: differs for a file that has no name any more
};

// Encodes `input` into the open file `fd` and reports the progress. False, with the reason and the file it is about in
// `error`, on failure; the file is then of no use.
[[nodiscard]] bool convertMovie(const InputMovie& input, const std::string& output, int fd, Format format,
                                const FormatSettings& settings, std::string& error);

} // namespace tavrix::movencoder
