// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieoffsets.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "probe/mediainforecord.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

namespace tavrix
{

namespace
{

TrackList soundTracks(const Movie& movie)
{
    TrackList sound;
    const TrackList tracks = movie.tracks();
    for (const std::shared_ptr<Track>& track : tracks) {
        if (track->mediaType() == QLatin1String("soun")) {
            sound.append(track);
        }
    }
    return sound;
}

void keepEarlier(std::optional<MediaTime>& stored, const MediaTime& candidate)
{
    if (!stored || secondsDouble(candidate) < secondsDouble(*stored)) {
        stored = candidate;
    }
}

} // namespace

QVariantMap qtOffsetMs(const QString& path)
{
    QVariantMap result;
    if (!qtkitInstantiate(stringByExpandingTildeInPath(path))) {
        logLine(QStringLiteral("Erreur              : Movie illisible"));
        return result;
    }
    const TrackList tracks = soundTracks(*getQTMOVIE());
    if (tracks.isEmpty()) {
        logLine(QStringLiteral("Erreur              : Pas d'audio ou codec audio illisible QT"));
        return result;
    }
    std::optional<MediaTime> offset;
    std::optional<MediaTime> end;
    for (const std::shared_ptr<Track>& track : tracks) {
        const MediaTimeRange range = track->range();
        keepEarlier(offset, range.time);
        keepEarlier(end, QTTimeRangeEnd(range));
    }
    logDebug(QStringLiteral("la_mArray_fin 1      : %qi"), {end->timeValue});
    result.insert(record::a0_offset, QVariant::fromValue<qint64>(offset->timeValue));
    return result;
}

} // namespace tavrix
