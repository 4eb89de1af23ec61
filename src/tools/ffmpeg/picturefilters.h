// SPDX-License-Identifier: GPL-3.0-or-later
// Filters that give an encoded picture its place in time and its shape.
#pragma once

#include "media/sourcefacts.h"
#include "tools/ffmpeg/commandline.h"

#include <optional>
#include <string>

namespace tavrix::front
{

// For each output time the nearest picture of the source, for an output rate in pictures per second ("25", "29.97",
// "30000/1001"); nothing when it is no such number. `picture` may be null: the source's rate is not known then.
[[nodiscard]] std::optional<std::string> nearestPictureFilters(const std::string& rate,
                                                               const media::StreamFacts* picture);

// For a source in several pieces, evenly spaced: each picture at its place in the row. libavformat gives the first ones
// of a piece the times of the last ones of the piece before, so that some would be dropped. `isLast`: no filter behind
// it gives the pictures other times. "" for other sources.
[[nodiscard]] std::string respacedFilters(const media::StreamFacts& picture, double clipStart, bool isLast);

// The filters of an upright picture in a frame that was chosen for the stored one ("scale=640:368,setdar=16/9"): the
// picture keeps its own shape, with black at the sides. Anything else comes back as it is.
[[nodiscard]] std::string fittedFilters(const std::string& filters, const media::StreamFacts& picture);

// What ffmpeg 4 forgets when it turns a mirrored picture; "" where nothing is forgotten.
[[nodiscard]] std::string forgottenMirror(const media::Turning& turning);

} // namespace tavrix::front
