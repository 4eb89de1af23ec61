// SPDX-License-Identifier: GPL-3.0-or-later
// What the FFmpeg libraries say while this process uses them.
#pragma once

#include "media/avowners.h"

#include <string>

namespace tavrix::front
{

// Listens for as long as it lives; one at a time. Nothing is printed meanwhile.
class LibraryRemarks
{
public:
    LibraryRemarks();
    ~LibraryRemarks();
    LibraryRemarks(const LibraryRemarks&) = delete;
    LibraryRemarks& operator=(const LibraryRemarks&) = delete;

    // Whether there was a remark that ffmpeg would have printed.
    [[nodiscard]] bool any() const;
    // The libraries' description of an input or an output, as ffmpeg prints it.
    [[nodiscard]] std::string description(AVFormatContext& context, const char* name, bool ofOutput);
};

} // namespace tavrix::front
