// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Recording dates of AVCHD playlists: the program names clips by them, the gettimestamps tool prints them.

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace tavrix
{

// Playlists are a few kilobytes; a larger ".MPL" is no playlist and is not read.
inline constexpr std::size_t playlistLimit = std::size_t{16} * 1024 * 1024;

// First occurrence of the needle, or null. The last possible position is never compared.
[[nodiscard]] const unsigned char* _u_strstr(const unsigned char* haystack, const unsigned char* needle,
                                             std::size_t haystackLength, std::size_t needleLength);

// Lines "NNNNN : clip-20YY-MM-DD HH;MM;SS" (each with "\n") of one playlist's bytes: by the marker scan, or where that
// finds nothing by the playlist's own structure. Empty for damaged bytes.
[[nodiscard]] std::vector<std::string> playlistLines(const unsigned char* bytes, std::size_t length);
// The two ways of playlistLines by themselves.
[[nodiscard]] std::vector<std::string> playlistLinesByMarker(const unsigned char* bytes, std::size_t length);
[[nodiscard]] std::vector<std::string> playlistLinesByStructure(const unsigned char* bytes, std::size_t length);

// Prints the lines of every ".MPL" of a folder, sorted by name, on `out`; errors go to `err`. Changes the working
// folder: for the tool only. False when the folder or an entry's size cannot be read; a file that cannot be read is
// passed over.
bool printPlaylistDates(const std::string& folder, std::FILE* out, std::FILE* err);
// The same without an answer.
void getDateCreation(const std::string& folder, std::FILE* out = stdout, std::FILE* err = stderr);

} // namespace tavrix
