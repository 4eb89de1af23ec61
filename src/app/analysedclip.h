// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the tool leaves of a source that was analysed, and the row that it becomes.

#include "app/batchlist.h"
#include "probe/mediainforecord.h"

#include <QString>

namespace tavrix
{

// Where the tool puts the first pictures.
[[nodiscard]] QString frameFile();
// Interlacing code of these pictures, which are deleted; that of a progressive clip without them.
[[nodiscard]] QString interlacingOfFrames();
// Where the thumbnail goes: a name of the temporary folder that is still free, or nearly so.
[[nodiscard]] QString thumbnailPath(const QString& source);
// Why a source has no row although the tool ran: in plain words where the last line of its text is known, else with it.
[[nodiscard]] QString unreadableReason(const QString& text);
// The waiting row of a camera clip, without its number. The image is nothing without a thumbnail.
[[nodiscard]] BatchRow analysedRow(const QString& source, MediaInfoRecord infos, const QString& image, int out);

} // namespace tavrix
