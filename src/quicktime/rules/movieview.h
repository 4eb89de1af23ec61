// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The preview: what a face's movie view must offer, and the controls on top of it.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

class MovieView
{
public:
    virtual ~MovieView() = default;
    // Null detaches the view from its movie.
    virtual void setMovie(const std::shared_ptr<Movie>& movie) = 0;
    // What the view shows; null when it is empty.
    [[nodiscard]] virtual std::shared_ptr<Movie> movie() const = 0;
    virtual void play() = 0; // from the current time on
    virtual void pause() = 0;
    // The time of the picture that is shown, from the movie's beginning.
    [[nodiscard]] virtual MediaTime currentTime() const = 0;
    virtual void setCurrentTime(const MediaTime& time) = 0;
    // The movie's volume or looping has changed: the player should take it over.
    virtual void movieSettingsChanged() = 0;
};

// Puts the movie of the path into the view; a leading tilde is expanded. False (and an empty view) when it cannot be
// opened.
bool movie2MovieView(const QString& path, MovieView& view, bool asyncFlag);

void movieviewPlay(MovieView& view);
void movieviewStop(MovieView& view);
void movieviewLoop(MovieView& view);                              // again and again from now on
void movieviewVolume(MovieView& view, float volume);              // 0 to 1
[[nodiscard]] double movieviewDuration(const MovieView& view);    // seconds; 0 without a movie
void movieviewRelease(MovieView& view);                           // empties the view
[[nodiscard]] double movieviewCurrentTime(const MovieView& view); // seconds
void movieviewGoToTime(MovieView& view, double seconds);

} // namespace tavrix
