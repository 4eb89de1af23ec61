// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/soundoffsets.h"

#include "probe/streamoffsets.h"
#include "quicktime/rules/moviequeries.h"

#include <cmath>
#include <cstdlib>

namespace tavrix
{

namespace
{

// Starts of the movie's sound tracks against that of its first picture track; empty without either.
QList<int> trackOffsets(const Movie& movie)
{
    const TrackList pictures = movieVideoTracks(movie);
    if (pictures.isEmpty()) {
        return {};
    }
    const double pictureStart = secondsDouble(pictures.first()->range().time);
    QList<int> offsets;
    for (const std::shared_ptr<Track>& track : movieTracks(movie).value_or(TrackList())) {
        if (track->mediaType() == QLatin1String("soun")) {
            const double start = secondsDouble(track->range().time);
            offsets << static_cast<int>(std::lround((start - pictureStart) * 1000));
        }
    }
    return offsets;
}

} // namespace

int noticedOffset(int milliseconds)
{
    return std::abs(milliseconds) <= unnoticedOffsetMs ? 0 : milliseconds;
}

std::optional<bool> offsetsAgree(const SoundOffset& offset)
{
    if (!offset.byTimeStamps || !offset.byTrackRanges) {
        return std::nullopt;
    }
    const int difference = noticedOffset(*offset.byTimeStamps) - noticedOffset(*offset.byTrackRanges);
    return std::abs(difference) <= unnoticedOffsetMs;
}

QList<SoundOffset> soundOffsets(int soundStreams, const QString& transcript, const Movie* movie)
{
    const QList<int> byTimeStamps = offsetTracksFromTranscript(transcript, QString());
    const QList<int> byTrackRanges = movie == nullptr ? QList<int>() : trackOffsets(*movie);
    QList<SoundOffset> offsets(soundStreams);
    for (int i = 0; i < soundStreams; ++i) {
        // A stream without packets at the start is left out of the list: then nobody knows which ones are meant.
        if (byTimeStamps.size() == soundStreams) {
            offsets[i].byTimeStamps = byTimeStamps.at(i);
        }
        if (byTrackRanges.size() == soundStreams) {
            offsets[i].byTrackRanges = byTrackRanges.at(i);
        }
    }
    return offsets;
}

} // namespace tavrix
