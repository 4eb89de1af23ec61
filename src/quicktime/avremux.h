#pragma once

// Copying of media into a QuickTime file without decoding.

#include "sys/result.h"

#include <QString>

#include <vector>

namespace tavrix
{

// Copies the pictures and sound of any media file into a QuickTime file with that movie time scale (units a second).
// The timeline starts at 0. Gives the source's stream index of each new track, in their order.
[[nodiscard]] Result<std::vector<int>, QString> remuxToMov(const QString& sourcePath, const QString& destinationPath,
                                                           int movieTimeScale);

} // namespace tavrix
