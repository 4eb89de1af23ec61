// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Sources that are described well and yet cannot give a single picture.

#include "media/sourcefacts.h"

#include <QString>

namespace tavrix
{

enum class Look {
    AtHeader,  // what its header says
    AtPackets, // also whether its first packets tell what its pictures are; slower
};

// Why none of the source's pictures can come out, in the user's words: they are encrypted, in another file, or nothing
// that a decoder could take. Nothing where some may come out, and for a file that cannot be opened as a clip: ffmpeg
// tells about that one.
[[nodiscard]] QString pictureObstacle(const QString& source, Look look);
// The same of facts that were read with that look.
[[nodiscard]] QString pictureObstacle(const media::SourceFacts& facts, Look look);

} // namespace tavrix
