// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The media info record as the QuickTime layer sees a file.

#include "media/sizes.h"
#include "probe/mediainforecord.h"
#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// What is known of a video track's picture, for choosing its display size.
struct PictureSizes {
    PixelSize encoded;
    PixelSize clean; // the clean aperture
    PixelSize track;
};

// The size a track is shown at. movieRatio is the movie's width / height, 0 when not known.
[[nodiscard]] PixelSize chosenDisplaySize(const PictureSizes& sizes, float movieRatio);

struct MovieLook {
    bool countsPictures = true; // for the frame rate; a container without an index is read to its end
    bool mayRepair = true;      // a movie that refuses to be saved is made savable, in the file itself
};

// What the tracks say; infosQtMovieTrack looks at everything. Empty for an unreadable file.
[[nodiscard]] MediaInfoRecord movieRecord(const QString& path, const MovieLook& look);

// Record without stream offsets. Empty for an unreadable file. A leading tilde is expanded.
[[nodiscard]] MediaInfoRecord infosQtMovieTrack(const QString& path);
// The same, with the sound's offset when it holds more than one key.
[[nodiscard]] MediaInfoRecord qtDico(const QString& path);

} // namespace tavrix
