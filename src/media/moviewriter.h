// SPDX-License-Identifier: GPL-3.0-or-later
// What a movie says in words about its maker, and what sort of maker that is. Free of Qt.
#pragma once

#include "media/atomreader.h"
#include "media/recordingdate.h"

#include <string>
#include <vector>

namespace tavrix
{

// Texts as written, "" where there is none. Damaged parts are passed over.
struct MovieWords {
    std::string make;
    std::string model;
    std::string software;
    bool android = false;              // keys that only Android writes
    std::vector<std::string> handlers; // the names of the tracks' handlers
    std::vector<std::string> dates;    // Apple's key first, then what user data holds
};

// `moov` is the payload of the movie atom.
[[nodiscard]] MovieWords movieWords(ByteView moov);

// `brand` is the file's major brand or 0.
[[nodiscard]] HeaderWriter headerWriter(const MovieWords& words, std::uint32_t brand);

} // namespace tavrix
