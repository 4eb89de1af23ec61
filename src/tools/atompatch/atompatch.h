// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The tool that lets a movie be saved.

#include <iosfwd>
#include <string>
#include <vector>

namespace tavrix
{

// Exit codes of the tool.
enum class AtomPatchResult {
    Done = 0,    // cleared, or there was nothing to clear
    Refused = 1, // not a movie, damaged, or not writable: the file is as it was
    Usage = 2,
};

// Clears the "nsav" mark that keeps a QuickTime movie from being saved: its four value bytes become 0 in place, no
// other byte is touched and none moves. The arguments are those behind the program's name.
AtomPatchResult runAtomPatch(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors);

} // namespace tavrix
