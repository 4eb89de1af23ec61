// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Start offsets of a source's streams, in milliseconds, from timestamp-debugging output.

#include <QList>
#include <QString>
#include <QVariantMap>

namespace tavrix
{

// Keys such as "a1_offsetPts" (the stream's own number) for offsets above 30 ms in size; empty when nothing is
// measured.
[[nodiscard]] QVariantMap ptsDtsOffsetMs(const QString& transcript);
// Runs the tool and returns one offset per audio stream (at most four); empty on failure.
[[nodiscard]] QList<int> offsetTracks(const QString& source, const QString& mode);
// The pure half of offsetTracks.
[[nodiscard]] QList<int> offsetTracksFromTranscript(const QString& transcript, const QString& mode);
[[nodiscard]] QString offsetTracksCommand(const QString& ffmpeg, const QString& source, const QString& transcript);

} // namespace tavrix
