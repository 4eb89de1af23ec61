// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The parser of the tool's description of a source.

#include "probe/mediainforecord.h"

#include <optional>

namespace tavrix
{

// Record of the last input block of the banner that an end marker follows. Without a path, nothing for an absent or
// empty banner; an empty record for one that describes no input. With a path and a banner that lacks "Input #" the tool
// is run on the path; nothing when its text describes no input either.
[[nodiscard]] std::optional<MediaInfoRecord> ffInfos(const QString& sourcePath, const QString& banner);
// Record of a captured banner; nothing when either argument is nothing, or the parser answers nothing.
[[nodiscard]] std::optional<MediaInfoRecord> analysisFf(const QString& verboseFFmpegStr, const QString& interlacingStr);
// A record skeleton whose keys carry no underscore; no pipeline reads it.
[[nodiscard]] MediaInfoRecord analysisDico();
// The pure parser: record of the banner's text, empty when no block is found or a stream specifier has no ".".
[[nodiscard]] MediaInfoRecord recordFromBanner(const QString& banner);

} // namespace tavrix
