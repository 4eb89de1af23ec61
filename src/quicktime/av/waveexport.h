// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The sound of a movie as a file of its own.

#include "media/edittimeline.h"
#include "sys/result.h"

#include <QString>

namespace tavrix
{

// Decodes the first sound track of the source, as the edits leave it, into a WAVE file of 16-bit samples at the track's
// own rate and channels. The file appears only when it is complete.
[[nodiscard]] Result<void, QString> exportWave(const QString& sourcePath, const QString& destinationPath,
                                               const EditTimeline& timeline);

} // namespace tavrix
