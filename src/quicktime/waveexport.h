#pragma once

#include "media/edittimeline.h"

#include <QString>

namespace tavrix
{

// Decodes the first sound track of the source, as the edits leave it, into a WAVE file of 16-bit samples at the track's
// own rate and channels. The file appears only when it is complete; otherwise false with *reason.
[[nodiscard]] bool exportWave(const QString& sourcePath, const QString& destinationPath, const EditTimeline& timeline,
                              QString* reason);

} // namespace tavrix
