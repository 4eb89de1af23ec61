// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/moviequeries.h"

#include "platform/systeminfo.h"

namespace tavrix
{

namespace
{
constexpr quint32 hintsHighQuality = 0x100;
constexpr quint32 hintsDontUseVideoOverlaySurface = 0x10000;
constexpr quint32 hintsSingleField = 0x100000;
constexpr quint32 hintsDeinterlaceFields = 0x4000000;
} // namespace

bool isVideoMediaType(const QString& mediaType)
{
    return mediaType == QLatin1String("vide") || mediaType == QLatin1String("MPEG") ||
           mediaType == QLatin1String("flsh") || mediaType == QLatin1String("movi");
}

std::optional<TrackList> movieTracks(const Movie& movie)
{
    TrackList tracks = movie.tracks();
    if (tracks.isEmpty()) {
        return std::nullopt;
    }
    return tracks;
}

TrackList movieVideoTracks(const Movie& movie)
{
    TrackList video;
    const TrackList tracks = movie.tracks();
    for (const std::shared_ptr<Track>& track : tracks) {
        if (isVideoMediaType(track->mediaType())) {
            video.append(track);
        }
    }
    return video;
}

void movieEditable(Movie& movie)
{
    movie.setEditable(true);
}

double movieDuration(const Movie& movie)
{
    const MediaTime duration = movie.duration();
    qint64 scaled = 0;
    // A product beyond 64 bits is no duration that a movie can have.
    if (duration.timeScale == 0 || __builtin_mul_overflow(duration.timeValue, qint64(10000), &scaled)) {
        return 0.0;
    }
    const qint64 milliseconds = (scaled / duration.timeScale + 5) / 10;
    return static_cast<double>(milliseconds) / 1000.0;
}

bool hasApertureModes()
{
    // In single precision: 7.04 as a float is a little less than 7.04 as a double.
    return versionQT() >= 7.04F;
}

void movieDisplaySettings(Movie& movie)
{
    if (movieVideoTracks(movie).isEmpty()) {
        return;
    }
    if (hasApertureModes()) {
        movie.generateApertureModeDimensions();
        movie.setApertureMode(ApertureMode::EncodedPixels);
    } else {
        movie.removeApertureModeDimensions();
    }
    movie.setActive(true);
    movie.setPlayHints(0, hintsDeinterlaceFields);
    movie.setPlayHints(0, hintsSingleField);
    movie.setPlayHints(hintsHighQuality, hintsHighQuality);
    movie.setPlayHints(hintsDontUseVideoOverlaySurface, hintsDontUseVideoOverlaySurface);
}

} // namespace tavrix
