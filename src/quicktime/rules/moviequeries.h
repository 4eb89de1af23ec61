// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small questions about an open movie, and how it is prepared for display.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

using TrackList = QList<std::shared_ptr<Track>>;

// "vide", "MPEG", "flsh" and "movi" count as video.
[[nodiscard]] bool isVideoMediaType(const QString& mediaType);
// All tracks in their order; no value (rather than an empty list) when the movie has none.
[[nodiscard]] std::optional<TrackList> movieTracks(const Movie& movie);
// Those whose media type counts as video, in their order; empty when there are none.
[[nodiscard]] TrackList movieVideoTracks(const Movie& movie);
// Allows edits from now on.
void movieEditable(Movie& movie);
// Seconds, rounded to the millisecond.
[[nodiscard]] double movieDuration(const Movie& movie);
// True when the media layer knows aperture modes.
[[nodiscard]] bool hasApertureModes();
// Encoded pixels, active, high quality, no field processing; nothing for a movie without video.
void movieDisplaySettings(Movie& movie);

} // namespace tavrix
