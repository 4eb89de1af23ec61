// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/framerate.h"

#include "base/dialogue/numberconversions.h"
#include "base/text/log.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

#include <cmath>

namespace tavrix
{

namespace
{

float videoSeconds(const Movie& movie)
{
    float seconds = 0.0F;
    const TrackList tracks = movieVideoTracks(movie);
    for (const std::shared_ptr<Track>& track : tracks) {
        seconds += timecodeStr2Float(QTStringFromTime(track->range().duration));
    }
    if (std::fabs(seconds) < 0.1F) {
        seconds = secondsFloat(movie.duration());
    }
    return seconds;
}

qint64 countedFrames(Movie& movie, quint8 mpegFlag)
{
    const quint32 mediaType = mpegFlag != 0 ? fourCharCode("eyes") : fourCharCode("vide");
    int flags = interesting::nextTimeMediaSample | interesting::nextTimeEdgeOK;
    qint64 frames = 0;
    qint64 time = movie.nextInterestingTime(flags, mediaType, 0);
    flags = interesting::nextTimeMediaSample;
    while (time >= 0) {
        ++frames;
        time = movie.nextInterestingTime(flags, mediaType, time);
    }
    return frames;
}

// Movies whose time scale is a frame rate times 1000 mean exactly that rate.
float correctedRate(float rate, qint32 timeScale)
{
    const auto scale = static_cast<float>(timeScale);
    if (scale == 29970.0F || scale == 23976.0F || scale == 25000.0F) {
        return scale / 1000.0F;
    }
    return rate;
}

} // namespace

float movieFps(Movie& movie, quint8 mpegFlag)
{
    const float seconds = videoSeconds(movie);
    const qint64 frames = countedFrames(movie, mpegFlag);
    float rate = seconds == 0.0F ? 0.0F : static_cast<float>(frames) / seconds;
    rate = std::trunc(rate * 1000.0F) / 1000.0F;
    rate = correctedRate(rate, movie.duration().timeScale);
    if (rate < 0.11F || (rate > 30.2F && seconds < 1.0F)) {
        logLine(QStringLiteral("Framerate           :-("));
        return 0.0F;
    }
    logDebug(QStringLiteral("Framerate           : %f"), {static_cast<double>(rate)});
    return rate;
}

float movieFpsQt(const QString& path, quint8 mpegFlag)
{
    if (!qtkitInstantiate(path)) {
        return 0.0F;
    }
    return movieFps(*getQTMOVIE(), mpegFlag);
}

} // namespace tavrix
