// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/trackinformation.h"

#include "base/dialogue/alerts.h"
#include "base/dialogue/numberconversions.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "platform/desktop.h"
#include "probe/aspectclass.h"
#include "process/runners.h"
#include "quicktime/rules/aspectratios.h"
#include "quicktime/rules/codecnames.h"
#include "quicktime/rules/framerate.h"
#include "quicktime/rules/moviefiles.h"
#include "quicktime/rules/movieoffsets.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

#include <cmath>

namespace tavrix
{

namespace
{

constexpr float closeEnough = 0.06F; // between two ratios

float ratio(int width, int height)
{
    return height == 0 ? 0.0F : static_cast<float>(width) / static_cast<float>(height);
}

bool isNear(float a, float b)
{
    return std::fabs(a - b) <= closeEnough;
}

PixelSize wholePixels(const MediaSize& size)
{
    return {truncatedInt(size.width), truncatedInt(size.height)};
}

// Writes the movie's own keys and returns its ratio, 0 when its size is not known yet.
float addMovieKeys(const Movie& movie, MediaInfoRecord& record)
{
    const MediaTime duration = movie.duration();
    const qint64 seconds = duration.timeScale == 0 ? 0 : duration.timeValue / duration.timeScale;
    record.insert(record::w_duration, truncatedInt(static_cast<double>(seconds)));
    const auto [width, height] = wholePixels(movie.currentSize());
    if (width == 0 || height == 0) {
        record.insert(record::w_qtasync, 1);
        logLine(QStringLiteral("Erreur              : Movie lisible mais sans info wrapper (async?)"));
        if (getDEBUGDEV() != 0) {
            displayAlert(QStringLiteral("qt size: 0x0"), QString(), 0, nullptr);
        }
        return 0.0F;
    }
    record.insert(record::w_width, width);
    record.insert(record::w_height, height);
    record.insert(record::w_dar, DarPar(width, height, 1, 1).value(0));
    return ratio(width, height);
}

PictureSizes apertureSizes(Track& track)
{
    track.generateApertureModeDimensions();
    const MediaSize encoded = track.apertureModeDimensionsForMode(ApertureMode::EncodedPixels);
    const MediaSize clean = track.apertureModeDimensionsForMode(ApertureMode::Clean);
    const MediaSize shown = track.dimensions();
    return {wholePixels(encoded), wholePixels(clean), wholePixels(shown)};
}

void addCrop(const Track& track, int number, const QString& pixelAspect, const PictureSizes& sizes,
             MediaInfoRecord& record)
{
    const QStringList parts = pixelAspect.split(QLatin1Char(':'));
    const float first = str2Float(parts.value(0));
    const float second = str2Float(parts.value(1));
    const float pixelRatio = second == 0.0F ? 0.0F : first / second;
    const MediaRect bounds = track.boundsRect();
    const float shownWidth = pixelRatio * static_cast<float>(sizes.encoded.width) + 0.5F;
    record.insert(record::stream('v', number, "croptop"), int(bounds.top));
    record.insert(record::stream('v', number, "cropbottom"), sizes.encoded.height - bounds.bottom - bounds.top);
    record.insert(record::stream('v', number, "cropleft"), int(bounds.left));
    record.insert(record::stream('v', number, "cropright"),
                  truncatedInt(static_cast<double>(shownWidth)) - bounds.right - bounds.left);
}

void addVideoKeys(Track& track, int number, float movieRatio, const std::optional<float>& rate, MediaInfoRecord& record)
{
    const QString name = videoCodecName(sampleFormatText(track.mediaType(), track.sampleDescription()));
    if (name != QLatin1String("raw")) {
        record.insert(record::stream('v', number, "codec"), name);
    }
    PictureSizes sizes;
    PixelSize display{1, 1};
    if (hasApertureModes()) {
        sizes = apertureSizes(track);
        display = chosenDisplaySize(sizes, movieRatio);
    } else {
        const MediaSize encoded = track.trackDimensions();
        sizes.encoded = wholePixels(encoded);
    }
    const QStringList aspects = DarPar(display.width, display.height, sizes.encoded.width, sizes.encoded.height);
    const bool known = aspects.size() >= 2;
    const QString pixelAspect = known ? aspects.at(1) : QStringLiteral("100:100");
    record.insert(record::stream('v', number, "dar"), known ? aspects.at(0) : QStringLiteral("100:100"));
    record.insert(record::stream('v', number, "par"), pixelAspect);
    record.insert(record::stream('v', number, "width"), sizes.encoded.width);
    record.insert(record::stream('v', number, "height"), sizes.encoded.height);
    addCrop(track, number, pixelAspect, sizes, record);
    if (rate) {
        record.insert(record::stream('v', number, "fps"), *rate);
    }
}

void addSoundKeys(const Track& track, int number, MediaInfoRecord& record)
{
    const SampleDescription description = track.sampleDescription();
    const QString name = audioCodecName(sampleFormatText(track.mediaType(), description));
    if (name != QLatin1String("raw")) {
        record.insert(record::stream('a', number, "codec"), name);
    }
    record.insert(record::stream('a', number, "channels"), description.channels);
    record.insert(record::stream('a', number, "bits"), description.sampleSize);
    record.insert(record::stream('a', number, "rate"),
                  truncatedInt(static_cast<double>(description.sampleRateFixed >> 16)));
}

void addTrackKeys(const TrackList& tracks, float movieRatio, const std::optional<float>& rate, MediaInfoRecord& record)
{
    int videos = 0;
    int sounds = 0;
    for (qsizetype index = 0; index < tracks.size(); ++index) {
        Track& track = *tracks.at(index);
        const QString mediaType = track.mediaType();
        if (mediaType.isNull() || mediaType == QLatin1String("twen")) {
            continue;
        }
        if (isVideoMediaType(mediaType)) {
            addVideoKeys(track, videos++, movieRatio, rate, record);
        } else if (mediaType == QLatin1String("soun")) {
            addSoundKeys(track, sounds++, record);
        } else {
            record.insert(formatText(QStringLiteral("toto%d_mediaAttributes"), {static_cast<int>(index)}), mediaType);
        }
    }
}

// A movie that may be read but not saved is made savable, in the file itself.
void repairNsav(const QString& path)
{
    logLine(QStringLiteral("qt>infosQtMovieTr:-( nsav"));
    if (!disponible(path)) {
        return;
    }
    QTMOVIErelease();
    const QString output = taskArray({QStringLiteral("atompatch"), QStringLiteral("-i"), path, QStringLiteral("-f"),
                                      QStringLiteral("nsav"), QStringLiteral("-o"), QStringLiteral("self")},
                                     true);
    logDebug(QStringLiteral("%@"), {output});
    desktopServices().noteFileSystemChanged(path);
    if (!qtkitInstantiate(path)) {
        logLine(QStringLiteral("Erreur              : Movie illisible"));
    }
}

void addNsavKey(const QString& path, MediaInfoRecord& record)
{
    const QString name = lastPathComponent(path);
    const bool named = name == QLatin1String("mov") || name == QLatin1String("qtl");
    if (!named || record.contains(record::w_qtasync)) {
        return;
    }
    if (nsavQtMovie(path)) {
        repairNsav(path);
    }
    record.insert(record::w_nsav, nsavQtMovie(path));
}

MediaInfoRecord describedMovie(const QString& path, const MovieLook& look)
{
    MediaInfoRecord record;
    if (!qtkitInstantiate(path)) {
        logLine(QStringLiteral("Erreur              : Movie illisible"));
        return record;
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    const float movieRatio = addMovieKeys(*movie, record);
    const std::optional<float> rate = look.countsPictures ? std::optional<float>(movieFps(*movie, 0)) : std::nullopt;
    const std::optional<TrackList> tracks = movieTracks(*movie);
    if (!tracks) {
        logLine(QStringLiteral(
            "echec                :-( code pas bon ou source non compatible QT (= pas trouve de track!!!)"));
        return record;
    }
    addTrackKeys(*tracks, movieRatio, rate, record);
    logDebug(QStringLiteral("infosDico : %@"), {record});
    if (look.mayRepair) {
        addNsavKey(path, record);
    }
    return record;
}

} // namespace

PixelSize chosenDisplaySize(const PictureSizes& sizes, float movieRatio)
{
    const PixelSize& clean = sizes.clean;
    const float cleanRatio = ratio(clean.width, clean.height);
    const float encodedRatio = ratio(sizes.encoded.width, sizes.encoded.height);
    const bool differs = !isNear(cleanRatio, encodedRatio) || cleanRatio == wideAspect;
    if (differs && !isNear(cleanRatio, classicAspect)) {
        return clean;
    }
    if (isNear(cleanRatio, movieRatio)) {
        return clean;
    }
    if (isNear(cleanRatio, classicAspect) && isNear(movieRatio, wideAspect)) {
        return {16 * sizes.encoded.height / 9, sizes.encoded.height};
    }
    if (isNear(movieRatio, encodedRatio)) {
        return clean;
    }
    return sizes.track;
}

MediaInfoRecord movieRecord(const QString& path, const MovieLook& look)
{
    return describedMovie(stringByExpandingTildeInPath(path), look);
}

MediaInfoRecord infosQtMovieTrack(const QString& path)
{
    logDebug(QStringLiteral("qt infosQtMovieTrack- debut"));
    MediaInfoRecord record = movieRecord(path, MovieLook());
    logDebug(QStringLiteral("qt infosQtMovieTrack- fin"));
    return record;
}

MediaInfoRecord qtDico(const QString& path)
{
    MediaInfoRecord record = infosQtMovieTrack(path);
    if (record.size() > 1) {
        record.insert(qtOffsetMs(path));
    }
    return record;
}

} // namespace tavrix
