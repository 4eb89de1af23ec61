#pragma once

#include "tools/movencoder/settings.h"

#include <string>

namespace tavrix::movencoder
{

enum class InputFate {
    Kept,
    RemovedOnceOpen, // the file has no name from then on and vanishes with this process, however it ends
};

// Encodes `input` into the open file `fd` and reports the progress. False, with the reason and the file it is about in
// `error`, on failure; the file is then of no use.
[[nodiscard]] bool convertMovie(const std::string& input, InputFate fate, const std::string& output, int fd,
                                Format format, const FormatSettings& settings, std::string& error);

} // namespace tavrix::movencoder
