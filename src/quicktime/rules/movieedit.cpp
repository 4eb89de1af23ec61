// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieedit.h"

#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "platform/desktop.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/moviefiles.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

#include <cmath>

namespace tavrix
{

namespace
{

bool failedCutJob(const char* reason)
{
    QTMOVIErelease();
    logLine(QStringLiteral("QTKit CoupeTailleMovi:-( fin (%@)"), {reason});
    return false;
}

// Leaves the wanted stretch of the movie; the text names the step that failed, null is success.
const char* cutToStretch(Movie& movie, double cutStart, qint32 keep)
{
    constexpr qint32 tenths = 10;
    const float seconds = secondsFloat(movie.duration());
    if (keep - cutStart <= static_cast<double>(seconds)) {
        if (cutStart >= 0.1 && !movieCut(movie, 0, truncated64(cutStart * tenths), tenths)) {
            return "echec MovieCoupe";
        }
        const MediaTime rest = movie.duration();
        if (keep != 0 && !movieCut(movie, qint64(keep) * rest.timeScale, rest.timeValue, rest.timeScale)) {
            return "echec MovieCoupe cplt";
        }
        return nullptr;
    }
    if (cutStart <= static_cast<double>(seconds) && static_cast<float>(keep) < seconds) {
        if (!movieCut(movie, 0, keep, tenths)) {
            return "echec MovieCoupe";
        }
    }
    return nullptr;
}

void forceTrackSize(Track& track, int width, int height)
{
    const MediaSize shown = track.dimensions();
    const int trackWidth = truncatedInt(shown.width);
    const int trackHeight = trackWidth <= 0 ? 0 : truncatedInt(shown.height);
    if (trackWidth == width || trackHeight == height) {
        return;
    }
    if (hasApertureModes()) {
        track.generateApertureModeDimensions();
        track.setApertureMode(ApertureMode::EncodedPixels);
    } else {
        track.removeApertureModeDimensions();
    }
    track.setDimensions({static_cast<double>(width), static_cast<double>(height)});
    track.setDisplayName(QStringLiteral("TX Video Track"));
}

QVariant sizeValue(const std::optional<QList<int>>& size)
{
    return size ? QVariant(QVariantList{size->at(0), size->at(1)}) : QVariant();
}

} // namespace

bool movieCut(Movie& movie, qint64 startValue, qint64 endValue, qint32 timeScale)
{
    const float before = secondsFloat(movie.duration());
    movie.deleteSegment(QTMakeTimeRange(QTMakeTime(startValue, timeScale), QTMakeTime(endValue, timeScale)));
    const float cut = secondsFloat(QTMakeTime(endValue - startValue, timeScale));
    const float after = secondsFloat(movie.duration());
    logDebug(QStringLiteral("%.3f - %.3f     =>? %.3f"),
             {static_cast<double>(before), static_cast<double>(cut), static_cast<double>(after)});
    return std::fabs(before - (cut + after)) <= 1.0F;
}

WriteAttributes exportAttributes(qint32 exportInt)
{
    WriteAttributes attributes;
    if (exportInt == 0 || exportInt == 1) {
        attributes.flatten = false;
        attributes.exportNumber = exportInt;
        attributes.exportType = fourCharCode("MooV");
    } else if (exportInt == -1) {
        attributes.flatten = true;
        attributes.exportNumber = 0;
        attributes.exportType = fourCharCode("MooV");
    } else if (exportInt == -2) {
        attributes.exportNumber = 1;
        attributes.exportType = fourCharCode("WAVE");
        attributes.exportManufacturer = fourCharCode("soun");
    }
    return attributes;
}

bool exportMovie(Movie& movie, const QString& dstPath, qint32 exportInt)
{
    logDebug(QStringLiteral("QTKit Export:       - debut"));
    logDebug(QStringLiteral("exportInt=%d, dst=%@"), {exportInt, dstPath});
    // Written over its own source, a movie would be lost.
    const bool intoItself = isSameFile(movie.path(), dstPath);
    if (intoItself || !movie.writeToFile(dstPath, exportAttributes(exportInt))) {
        logLine(QStringLiteral("QTKit Export:        :-( fin (Couldn't write movie to file)"));
        return false;
    }
    desktopServices().noteFileSystemChanged(dstPath);
    if (!testPresenceCocoa(dstPath)) {
        logLine(QStringLiteral("QTKit_m Export:      :-( fin (testPresenceCocoa)"));
    }
    logDebug(QStringLiteral("QTKit_m Export:      :-) fin"));
    return true;
}

bool movieForceTracksSize(Movie& movie, int width, int height)
{
    const TrackList tracks = movieVideoTracks(movie);
    if (tracks.isEmpty()) {
        return false;
    }
    movie.setCurrentSize({static_cast<double>(width), static_cast<double>(height)});
    for (const std::shared_ptr<Track>& track : tracks) {
        forceTrackSize(*track, width, height);
    }
    return true;
}

bool movieRescalePreExport(Movie& movie, qint32 oldScale, qint32 newScale, const QString& dstBase)
{
    movieEditable(movie);
    movie.setTimeScale(oldScale);
    const MediaTime duration = movie.duration();
    const MediaTimeRange range = QTMakeTimeRange(QTMakeTime(0, oldScale), duration);
    const double factor = oldScale == 0 ? 0.0 : static_cast<double>(newScale) / oldScale;
    const double newValue = factor == 0.0 ? 0.0 : static_cast<double>(duration.timeValue) / factor;
    movie.setTimeScale(newScale);
    movie.scaleSegment(range, QTMakeTime(truncated64(newValue), oldScale));
    return exportMovie(movie, dstBase + QStringLiteral(".mov"), -1);
}

bool movieCutForceSize(const QString& srcPath, const QString& dstPath, double cutStart, qint32 keepSeconds, int width,
                       int height, qint32 exportInt)
{
    const QString source = stringByExpandingTildeInPath(srcPath);
    const QString destination = stringByExpandingTildeInPath(dstPath);
    if (!qtkitInstantiate(source)) {
        return failedCutJob("echec Instantiate");
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    movieEditable(*movie);
    movieDisplaySettings(*movie);
    if (const char* failure = cutToStretch(*movie, cutStart, keepSeconds)) {
        return failedCutJob(failure);
    }
    if (width > 0 && height > 0 && !movieForceTracksSize(*movie, width, height)) {
        return failedCutJob("echec MovieTailleViaTrack");
    }
    // The destination goes before it is written: were it the source, the clip would be gone.
    if (isSameFile(source, destination)) {
        return failedCutJob("echec Export");
    }
    if (testPresenceCocoa(destination) && !rmCocoa(destination)) {
        logLine(QStringLiteral("QTKit CoupeTailleMovi:-/ not removed : %@"), {destination});
    }
    if (!exportMovie(*movie, destination, exportInt)) {
        return failedCutJob("echec Export");
    }
    QTMOVIErelease();
    logDebug(QStringLiteral("QTKit CoupeTailleMovie:-) fin"));
    return true;
}

bool movieForceSizeCurrentDisplay(const QString& srcPath, const QString& dstPath, int width, int height,
                                  qint32 exportInt)
{
    if (!qtkitInstantiate(srcPath)) {
        QTMOVIErelease();
        logLine(QStringLiteral("movieForceSizeCurrentDisplay - fin (echec Instantiate)"));
        return false;
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    const MediaSize size{static_cast<double>(width), static_cast<double>(height)};
    movieEditable(*movie);
    if (hasApertureModes()) {
        movie->setApertureMode(ApertureMode::EncodedPixels);
    } else {
        movie->removeApertureModeDimensions();
    }
    movie->setNaturalSize(size);
    movie->setCurrentSize(size);
    if (!movieForceTracksSize(*movie, width, height)) {
        return failedCutJob("echec MovieTailleViaTrack");
    }
    if (!exportMovie(*movie, dstPath, exportInt)) {
        return false;
    }
    const std::optional<QList<int>> current = movieSizeCurrentDisplayed(dstPath);
    const std::optional<QList<int>> natural = movieSizeNaturalDisplayed(dstPath);
    logDebug(QStringLiteral("[self movieSizeCurrentDisplayed:dstPathStr] : %@"), {sizeValue(current)});
    logDebug(QStringLiteral("[self movieSizeNaturalDisplayed:dstPathStr] : %@"), {sizeValue(natural)});
    return natural && *natural == QList<int>{width, height};
}

} // namespace tavrix
