// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// When a movie whose edit list has several pieces shows its pictures.

#include <cstdint>
#include <string>
#include <vector>

struct AVStream;

namespace tavrix::movencoder
{

// Libavformat hands out the pictures of the pieces in their order, but at the joints up to two pictures too early or
// too late, so that some come twice at the same time. These are the times by the list itself, in the stream's time
// base, one for each picture that libavformat shows. Empty where the movie has no such list, or where list and
// libavformat do not agree on what is shown.
[[nodiscard]] std::vector<std::int64_t> pieceTimes(const std::string& path, AVStream& stream);

} // namespace tavrix::movencoder
