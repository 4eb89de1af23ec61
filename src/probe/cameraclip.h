// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Rules that decide whether a source is a camera clip and how it is shown.

#include "probe/mediainforecord.h"

#include <optional>

namespace tavrix
{

struct ClipVerdict {
    bool accepted = false;
    QString reason; // localised, for people; nothing when accepted
};

// A source is a camera clip when it is progressive, at most 1280x720, and H.264 in a transport stream, H.264 or
// Motion-JPEG in QuickTime, or Motion-JPEG in AVI.
[[nodiscard]] ClipVerdict cameraClipVerdict(const std::optional<MediaInfoRecord>& infos, const QString& interlacing);

// Display aspect of the first video stream: 1.77, 1.33 or the measured ratio with two decimals.
[[nodiscard]] float clipAspect(const MediaInfoRecord& infos);
// "320x180" when the aspect is within 0.1 of 1.77, else "240x180".
[[nodiscard]] QString thumbnailSize(float aspect);

// Interlacing letter of a YUV4MPEG stream header: the character after " I", else the whole line.
[[nodiscard]] QString interlacingLetter(const QString& headerLine);

// Pictures per second as a person counts them; 0 when they come unevenly, no value when nothing is known.
[[nodiscard]] std::optional<double> clipRate(const MediaInfoRecord& infos);
// The mean rate that a description of a source gives beside a rate in thousands: that one is the unit of its clock, and
// the record takes its digits for pictures. 0 when it gives none; no value when the rate is one of pictures.
[[nodiscard]] std::optional<float> meanRate(const QString& banner);

// What is known of the pictures, for people: codec, size, rate. Empty when nothing is.
[[nodiscard]] QStringList pictureWords(const MediaInfoRecord& infos);
// What stands beside one another in the description of a clip, on one line.
[[nodiscard]] QString besideEachOther(const QStringList& words);
// One line that tells what a source is: codec, size, rate, duration; "" when nothing is known.
[[nodiscard]] QString clipDescription(const MediaInfoRecord& infos);

} // namespace tavrix
