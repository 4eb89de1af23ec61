// SPDX-License-Identifier: GPL-3.0-or-later
// What a clip says of itself.
#pragma once

#include <string>
#include <string_view>

namespace tavrix::front
{

// Whether an indented line of a file's description is a title, a date or another "key : value".
[[nodiscard]] bool isMetadataLine(std::string_view line);

// The line with underscores in phrases that a reader of the transcript takes for ffmpeg's own: a clip must not be able
// to add streams to its description, or a failure, by its title.
[[nodiscard]] std::string defusedMetadataLine(std::string_view line);

} // namespace tavrix::front
