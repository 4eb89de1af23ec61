// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Copying of media into a QuickTime file without decoding; uncompressed sound in another form becomes plain samples.

#include "sys/result.h"

#include <QString>

#include <optional>
#include <vector>

namespace tavrix
{

// A part of the source's timeline, in seconds.
struct CopyRange {
    double from = 0;
    double to = 0;
};

// Copies the pictures and sound of any media file into a QuickTime file with that movie time scale (units a second).
// The timeline starts at 0. Gives the source's stream index of each new track, in their order. Given a range, packets
// far from it are left out and the others keep their times; all are copied where no key picture stands shortly before.
[[nodiscard]] Result<std::vector<int>, QString> remuxToMov(const QString& sourcePath, const QString& destinationPath,
                                                           int movieTimeScale,
                                                           const std::optional<CopyRange>& range = std::nullopt);

} // namespace tavrix
