// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The one current movie, kept open so that successive questions about a path do not open it again, and a second slot
// for the movie of the preview. Main thread only.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// The current movie, then the preview's; null when there is none. Each path is the text it was opened from.
[[nodiscard]] std::shared_ptr<Movie> getQTMOVIE();
[[nodiscard]] QString getQTMOVIESTR(); // nothing when there is none
[[nodiscard]] std::shared_ptr<Movie> getQTMOVIEVIEW();
[[nodiscard]] QString getQTMOVIEVIEWSTR();
// Null (or nothing) clears the slot.
void setQTMOVIE(const std::shared_ptr<Movie>& movie);
void setQTMOVIESTR(const QString& path);
void setQTMOVIEVIEW(const std::shared_ptr<Movie>& movie);
void setQTMOVIEVIEWSTR(const QString& path);
// Clears movie and path; without a movie nothing changes.
void QTMOVIErelease();
void QTMOVIEVIEWrelease();
// The view movie's path, logged.
QString ac_qtMovieviewPathStr();

// Makes the movie of the path the current one; one that was opened from exactly this text is used again.
[[nodiscard]] bool qtkitInstantiate(const QString& path);
// A movie of its own, stored nowhere; null when it cannot be opened.
[[nodiscard]] std::shared_ptr<Movie> qtkitMovieInstantiateAsync(const QString& path);
// Makes the movie of the path the view's. Its path is left to the caller to store.
[[nodiscard]] bool qtkitMovieviewInstantiate(const QString& path);

} // namespace tavrix
