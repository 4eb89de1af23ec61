// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How many pictures a second a movie has.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Frames per second, counted from the movie's media samples; 0 when it cannot be estimated. A non-zero flag says that
// the source is an MPEG stream: then every sample that can be seen counts.
[[nodiscard]] float movieFps(Movie& movie, quint8 mpegFlag);
// The same for a path; 0 when it cannot be opened.
[[nodiscard]] float movieFpsQt(const QString& path, quint8 mpegFlag);

} // namespace tavrix
