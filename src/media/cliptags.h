// SPDX-License-Identifier: GPL-3.0-or-later
// What a clip says of itself, whatever its container calls it.
#pragma once

#include "media/headerchange.h"
#include "media/mediainput.h"

#include <string>
#include <vector>

namespace tavrix::media
{

// "" is unknown everywhere.
struct ClipTags {
    std::string createdUtc;  // the header's creation time, as "2019-07-24T08:25:57.000000Z"
    std::string createdHere; // Apple's, with its zone: "2019-07-24T10:25:57+0200"
    std::string title;
    std::string comment;
    std::string make;
    std::string model;
    std::string software; // of the camera
    std::string place;    // ISO 6709: "+48.8577+002.295/"
    bool hasTimeCode = false;
};

[[nodiscard]] ClipTags clipTagsOf(const MediaInput& input);

// For a QuickTime or MP4 file: short user data that most programs read, and the long names that Apple's read.
[[nodiscard]] std::vector<UserText> userTextsOf(const ClipTags& tags);
[[nodiscard]] std::vector<KeyText> keyTextsOf(const ClipTags& tags);

} // namespace tavrix::media
