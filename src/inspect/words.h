// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Short texts that the description is made of.

#include "base/dialogue/localisation.h"
#include "base/text/format.h"
#include "media/sourcefacts.h"

#include <QString>

namespace tavrix
{

// Text of the table "Inspect", filled in.
[[nodiscard]] QString inspectText(const char* key, std::initializer_list<FormatArg> arguments = {});

// With the language's decimal sign and without needless zeros: "59.94", "30", "0.5".
[[nodiscard]] QString numberWords(double number, int decimals);
// "4.3 MB", in units of 1000.
[[nodiscard]] QString sizeWords(qint64 bytes);
// "1:02:03" or "0:06.01"; hundredths below an hour.
[[nodiscard]] QString lengthWords(double seconds);
// "H.264 (h264)"; the bare name for one that is not known.
[[nodiscard]] QString codecWords(const QString& codec);
// "QuickTime or MP4"; the bare names for one that is not known.
[[nodiscard]] QString containerWords(const QString& wrapper);
// "the clock of the camera, beside the pictures"; the source is one of dateSource.
[[nodiscard]] QString dateSourceWords(const QString& source);
// "59.94 a second (twice 29.97)".
[[nodiscard]] QString rateWords(double rate);
// "BT.709, limited range".
[[nodiscard]] QString colourWords(const media::Colour& colour, bool fullRange);

} // namespace tavrix
