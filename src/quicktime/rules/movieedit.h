// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Cutting, resizing and writing movies. Destinations are overwritten; one that is the source itself is refused.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Deletes [start, start + end) in units of 1/timeScale second: the end is used as a duration. False when the durations
// before and after disagree with end - start by more than a second; the movie has been cut then all the same.
bool movieCut(Movie& movie, qint64 startValue, qint64 endValue, qint32 timeScale);
// Modes: 0 plain save, 1 exported movie, -1 flattened movie, -2 WAVE sound file, any other plain save.
bool exportMovie(Movie& movie, const QString& dstPath, qint32 exportInt);
// Attributes that a mode passes to the writer.
[[nodiscard]] WriteAttributes exportAttributes(qint32 exportInt);
// False (and no change) without a video track. A track that already has the width or the height is left as it is.
bool movieForceTracksSize(Movie& movie, int width, int height);
// Scales the time base and writes a flattened movie to dstBase + ".mov".
bool movieRescalePreExport(Movie& movie, qint32 oldScale, qint32 newScale, const QString& dstBase);
// Leaves keepSeconds from cutStart (seconds) on, resizes when width and height are positive, writes. A keep of 0 keeps
// all that follows. Leading tildes are expanded.
bool movieCutForceSize(const QString& srcPath, const QString& dstPath, double cutStart, qint32 keepSeconds, int width,
                       int height, qint32 exportInt);
// Resizes without cutting; true only when the written file has exactly that size.
bool movieForceSizeCurrentDisplay(const QString& srcPath, const QString& dstPath, int width, int height,
                                  qint32 exportInt);

} // namespace tavrix
