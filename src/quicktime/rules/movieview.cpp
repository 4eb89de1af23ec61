// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieview.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

namespace tavrix
{

namespace
{

// False when neither the plain nor, where allowed, the asynchronous way opens the file.
bool openForView(const QString& path, MovieView& view, bool asyncFlag)
{
    if (qtkitMovieviewInstantiate(path)) {
        return true;
    }
    QTMOVIEVIEWrelease();
    view.setMovie(getQTMOVIEVIEW());
    if (!asyncFlag) {
        logLine(QStringLiteral("qt movie2MovieVie:-( fin (pas async)"));
        return false;
    }
    if (qtkitMovieInstantiateAsync(path) == nullptr) {
        logLine(QStringLiteral("qt movie2MovieVie:-( fin (async)"));
        return false;
    }
    return true;
}

} // namespace

bool movie2MovieView(const QString& path, MovieView& view, bool asyncFlag)
{
    if (!openForView(stringByExpandingTildeInPath(path), view, asyncFlag)) {
        return false;
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    if (movie != nullptr) {
        movieDisplaySettings(*movie);
    }
    view.setMovie(movie);
    logDebug(QStringLiteral("qt movie2MovieVie:-) fin"));
    return true;
}

void movieviewPlay(MovieView& view)
{
    view.play();
}

void movieviewStop(MovieView& view)
{
    view.pause();
}

void movieviewLoop(MovieView& view)
{
    if (const std::shared_ptr<Movie> movie = view.movie()) {
        movie->setLoops(true);
        view.movieSettingsChanged();
    }
}

void movieviewVolume(MovieView& view, float volume)
{
    if (const std::shared_ptr<Movie> movie = view.movie()) {
        movie->setVolume(volume);
        view.movieSettingsChanged();
    }
}

double movieviewDuration(const MovieView& view)
{
    const std::shared_ptr<Movie> movie = view.movie();
    return movie == nullptr ? 0.0 : movieDuration(*movie);
}

void movieviewRelease(MovieView& view)
{
    view.setMovie(nullptr);
}

double movieviewCurrentTime(const MovieView& view)
{
    return secondsDouble(view.currentTime());
}

void movieviewGoToTime(MovieView& view, double seconds)
{
    MediaTime time = view.currentTime();
    time.timeValue = truncated64(seconds * time.timeScale);
    view.setCurrentTime(time);
}

} // namespace tavrix
