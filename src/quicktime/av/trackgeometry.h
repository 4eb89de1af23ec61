// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Sizes of a track's picture and where it lies on the movie's display.

#include "quicktime/av/moviesource.h"
#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Rectangle on the movie's display, in pixels of which there may be parts.
struct DisplayBox {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

// Stored pixels; 0 x 0 when the file does not tell.
[[nodiscard]] MediaSize encodedSize(const SourceTrack& track);
// Without an aperture mode of its own a track is shown at its header's size; aperture atoms and pixel aspect give the
// rest.
[[nodiscard]] MediaSize apertureSize(const SourceTrack& track, ApertureMode mode);
// The size the track is shown at before its matrix.
[[nodiscard]] MediaSize shownSize(const SourceTrack& track);
// Bounding box of a picture of that size under the matrix.
[[nodiscard]] DisplayBox mappedBox(const MediaSize& size, const AtomMatrix& matrix);
// The same of a box that lies anywhere.
[[nodiscard]] DisplayBox mappedBox(const DisplayBox& box, const AtomMatrix& matrix);
// The smallest box that holds both.
[[nodiscard]] DisplayBox unitedBox(const DisplayBox& a, const DisplayBox& b);
// The track's first sample description as a QuickTime library would tell it.
[[nodiscard]] SampleDescription describedSample(const SourceTrack& track, bool isAvi);

} // namespace tavrix
