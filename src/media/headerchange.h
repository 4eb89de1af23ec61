// SPDX-License-Identifier: GPL-3.0-or-later
// Changes of a movie file's header that leave its media where they are: edit lists and what the clip says of itself.
#pragma once

#include "media/movieatoms.h"
#include "sys/result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix
{

struct TrackEdits {
    std::size_t track = 0;          // index among the movie's tracks
    std::vector<EditEntry> entries; // durations in the change's movie scale; they replace the track's list
};

// A text of the user data: type such as "\251mak".
struct UserText {
    std::uint32_t type = 0;
    std::string text;
};

// A text under one of QuickTime's long names: "com.apple.quicktime.make".
struct KeyText {
    std::string key;
    std::string text;
};

struct HeaderChange {
    std::uint32_t movieScale = 0; // parts of a second for durations and edits; 0 keeps the movie's
    std::vector<TrackEdits> edits;
    std::vector<UserText> userTexts; // each replaces the one of its type
    std::vector<KeyText> keyTexts;   // written where the movie has no such list yet

    [[nodiscard]] bool isEmpty() const;
};

// The movie atom after the change, header included.
[[nodiscard]] std::vector<std::uint8_t> changedMovieAtom(const MovieAtoms& movie, const HeaderChange& change);

// Changes the movie that is open for reading and writing; nobody else may read it meanwhile. Fails, with the file
// untouched, where the header is damaged, packed, or not the last thing in the file.
[[nodiscard]] Result<void> changeMovieHeader(int descriptor, const HeaderChange& change);

} // namespace tavrix
