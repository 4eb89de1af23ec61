// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/streamoffsets.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/files/fileops.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "base/text/text.h"
#include "process/runners.h"
#include "process/shelltext.h"

#include <QFile>
#include <QMap>

#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace tavrix
{

namespace
{

const QString valueEnd = QStringLiteral(", ");
const QString fileStreamMark = QStringLiteral("Stream #");
const QString readPacketMark = QStringLiteral("av_read_packet stream=");
const QString readFrameMark = QStringLiteral("av_read_frame_internal stream=");
constexpr int thresholdMs = 30;

// Units per second of a time base "num/den"; 0 when it is none.
double unitsPerSecond(const QString& timeBase)
{
    const QStringList pieces = componentsSeparated(timeBase, QStringLiteral("/"));
    if (pieces.size() < 2) {
        return 0;
    }
    const double numerator = floatPrefix(pieces.at(0));
    const double denominator = floatPrefix(pieces.at(1));
    return numerator > 0 && denominator > 0 ? denominator / numerator : 0;
}

struct TimedStream {
    double timeBase = 0;
    QList<double> pts;
    double start = 0;
};
using StreamTable = QMap<int, TimedStream>;

// The streams of a transcript by kind, in the order in which the kinds are looked through.
struct TimedStreams {
    StreamTable video;
    StreamTable audio;
    StreamTable other;

    TimedStream* find(int id)
    {
        for (StreamTable* table : {&video, &audio, &other}) {
            const auto position = table->find(id);
            if (position != table->end()) {
                return &position.value();
            }
        }
        return nullptr;
    }
};

void addStream(const QString& line, TimedStreams& streams)
{
    const QStringList pieces = componentsSeparated(line, valueEnd);
    const QString idText = textAfter(pieces.at(0), QStringLiteral("."));
    if (idText.isNull()) {
        return;
    }
    const QString bracket = QStringLiteral("[");
    const QString idPiece = containsText(idText, bracket)
                                ? textBefore(idText, bracket)
                                : textBefore(textBefore(idText, QStringLiteral(":")), QStringLiteral("("));
    TimedStream stream;
    for (const QString& piece : pieces.mid(1)) {
        if (piece.contains(QLatin1Char('/'))) {
            stream.timeBase = unitsPerSecond(textBefore(piece, QStringLiteral(":")));
            break;
        }
    }
    const int id = leadingInteger(idPiece);
    logLine(QStringLiteral("id = %d, tb = %.0f"), {id, stream.timeBase});
    // Output streams stand below the input ones and print no time base: they must not hide the input's streams.
    for (StreamTable* earlier : {&streams.video, &streams.audio, &streams.other}) {
        if (earlier->contains(id) && earlier->value(id).timeBase <= 0) {
            earlier->remove(id);
        }
    }
    StreamTable& table = line.contains(QLatin1String("Video:"))   ? streams.video
                         : line.contains(QLatin1String("Audio:")) ? streams.audio
                                                                  : streams.other;
    table.insert(id, stream);
}

// Packet texts in chronological order; the streams they belong to go into the tables.
QStringList readTranscript(const QString& transcript, TimedStreams& streams)
{
    QStringList packets;
    const QStringList lines = linesToArray(transcript);
    for (qsizetype i = lines.size() - 1; i > 0; --i) {
        const QString& line = lines.at(i);
        if (line.contains(fileStreamMark) && !line.contains(QLatin1String(" -> ")) &&
            !line.contains(QLatin1String("rawvideo"))) {
            addStream(line, streams);
        } else if (line.contains(readPacketMark)) {
            packets.append(textAfter(line, readPacketMark));
        }
    }
    return reverseArray(packets);
}

void collectPts(const QStringList& packets, TimedStreams& streams)
{
    for (const QString& packet : packets) {
        const QString digit = packet.left(1);
        const bool numbered = digit >= QLatin1String("0") && digit <= QLatin1String("9");
        TimedStream* stream = numbered ? streams.find(leadingInteger(digit)) : nullptr;
        if (stream == nullptr) {
            logLine(QStringLiteral("pts/dts             :-( parse erreur, pas d'affectation sur chaque id (=>fin)"));
            return;
        }
        const QString pts = textAfter(packet, QStringLiteral("pts="), valueEnd);
        const QString dts = textAfter(packet, QStringLiteral("dts="), valueEnd);
        if (stream->timeBase <= 0) {
            continue;
        }
        if (floatPrefix(pts) > 0) {
            stream->pts.append(floatPrefix(pts) / stream->timeBase);
        }
        if (!dts.isNull() && floatPrefix(dts) >= 0) {
            stream->pts.append(floatPrefix(dts) / stream->timeBase);
        }
    }
}

void dropUnmeasured(StreamTable& table)
{
    for (auto it = table.begin(); it != table.end();) {
        if (it->pts.isEmpty()) {
            it = table.erase(it);
        } else {
            it->start = it->pts.first();
            ++it;
        }
    }
}

void storeOffsets(const StreamTable& table, const QString& kind, double reference, QVariantMap& offsets)
{
    for (auto it = table.begin(); it != table.end(); ++it) {
        const int offset = truncatedInt((it->start - reference) * 1000);
        logLine(QStringLiteral("pts %@#%d, ecart      = %d ms"), {kind, it.key(), offset});
        logLine(QStringLiteral("dts %@#%d, ecart      = %d ms"), {kind, it.key(), offset});
        if (std::abs(qint64{offset}) > thresholdMs) {
            const QString stem = kind + QString::number(it.key());
            offsets.insert(stem + QLatin1String("_offsetPts"), offset);
            offsets.insert(stem + QLatin1String("_offsetDts"), offset);
        }
    }
}

constexpr int unsetId = 12345;
constexpr int audioSlots = 4;

struct Track {
    int id = unsetId;
    QList<double> pts;
};

struct Tracks {
    std::array<Track, 2> video;
    std::array<Track, audioSlots> audio;
    double wrapperOffset = 0;
    double videoTimeBase = 0;
    double audioTimeBase = 0;
};

// Leading text of the specifier; the delimiters are tried in this order, wherever they stand.
QString specifierId(const QString& specifier)
{
    for (const char* delimiter : {"[", ",", ":", "("}) {
        if (containsText(specifier, QLatin1String(delimiter))) {
            return textBefore(specifier, QLatin1String(delimiter));
        }
    }
    return specifier;
}

template <std::size_t size> Track* firstFree(std::array<Track, size>& tracks)
{
    for (Track& track : tracks) {
        if (track.id == unsetId) {
            return &track;
        }
    }
    return nullptr;
}

void readTrackLine(const QString& line, Tracks& tracks)
{
    const bool video = line.contains(QLatin1String("Video:"));
    const bool audio = !video && line.contains(QLatin1String("Audio:"));
    if (!video && !audio) {
        return;
    }
    const QString head = textBefore(line, QStringLiteral(":"));
    const double timeBase = unitsPerSecond(head.mid(head.lastIndexOf(QLatin1Char(' ')) + 1));
    if (timeBase <= 0) {
        return;
    }
    const int id = leadingInteger(specifierId(textAfter(line, QStringLiteral("Stream #0."))));
    Track* track = video ? firstFree(tracks.video) : firstFree(tracks.audio);
    if (track != nullptr) {
        track->id = id;
        if (audio) {
            logLine(QStringLiteral("audioStreamId…       # %d"), {id});
        }
    }
    (video ? tracks.videoTimeBase : tracks.audioTimeBase) = timeBase;
}

void readWrapperOffset(const QString& line, Tracks& tracks)
{
    const QString text = textAfter(line, QStringLiteral("start:"), QStringLiteral(","));
    tracks.wrapperOffset = floatPrefix(text);
    logLine(QStringLiteral("wrapperOffset start  : %@"), {text});
    logLine(QStringLiteral("wrapperOffset        : %f"), {tracks.wrapperOffset});
}

void addPacket(const QString& packet, Tracks& tracks)
{
    const QString value = textAfter(packet, QStringLiteral(" pts="), valueEnd);
    if (value.isEmpty() || floatPrefix(value) < 0) {
        return;
    }
    const std::array<Track*, 2 + audioSlots> order = {&tracks.video[0], &tracks.video[1], &tracks.audio[0],
                                                      &tracks.audio[1], &tracks.audio[2], &tracks.audio[3]};
    for (Track* track : order) {
        if (packet.startsWith(QString::number(track->id))) {
            track->pts.append(floatPrefix(value));
            return;
        }
    }
}

double startOf(const Track& track, double timeBase)
{
    const double start = timeBase > 0 && !track.pts.isEmpty() ? track.pts.first() / timeBase : 0;
    return start > 0 ? start : 0;
}

Tracks readTracks(const QString& transcript)
{
    Tracks tracks;
    QStringList packets;
    for (const QString& line : componentsSeparated(transcript, QStringLiteral("\n"))) {
        if (line.contains(QLatin1String("Duration:")) && line.contains(QLatin1String("start:"))) {
            readWrapperOffset(line, tracks);
        } else if (line.contains(QLatin1String("Stream #0."))) {
            readTrackLine(line, tracks);
        } else if (line.contains(readFrameMark)) {
            packets.append(textAfter(line, readFrameMark));
        }
    }
    for (const QString& packet : packets) {
        addPacket(packet, tracks);
    }
    return tracks;
}

int trackOffset(const Tracks& tracks, double videoStart, double audioStart, const QString& mode)
{
    if (mode != QLatin1String("streamCopy")) {
        return truncatedInt((audioStart - videoStart) * 1000);
    }
    const double difference = tracks.wrapperOffset - videoStart;
    logLine(QStringLiteral("diffWrapperVideoOffse: %f"), {difference});
    const double video = std::trunc((difference - 0.0005) * 1000);
    return truncatedInt(2 * video + ((tracks.wrapperOffset - audioStart) - 0.0005) * -1000);
}

} // namespace

QVariantMap ptsDtsOffsetMs(const QString& transcript)
{
    QVariantMap offsets;
    if (!containsText(transcript, readPacketMark)) {
        return offsets;
    }
    TimedStreams streams;
    const QStringList packets = readTranscript(transcript, streams);
    if (packets.isEmpty()) {
        logLine(QStringLiteral("ptsDtsOffsetMs - fin :-( no pts"));
        return offsets;
    }
    if (streams.video.isEmpty()) {
        logLine(QStringLiteral("ptsDtsOffsetMs - fin ;-) no video"));
        return offsets;
    }
    if (streams.audio.isEmpty()) {
        logLine(QStringLiteral("ptsDtsOffsetMs - fin ;-) no audio"));
        return offsets;
    }
    collectPts(packets, streams);
    for (StreamTable* table : {&streams.video, &streams.audio, &streams.other}) {
        dropUnmeasured(*table);
    }
    if (streams.video.isEmpty()) {
        logLine(QStringLiteral("ptsDtsOffsetMs - fin :-( no pts"));
        return offsets;
    }
    double reference = -1;
    for (const TimedStream& stream : std::as_const(streams.video)) {
        if (reference < 0 || stream.start < reference) {
            reference = stream.start;
        }
    }
    storeOffsets(streams.video, QStringLiteral("v"), reference, offsets);
    storeOffsets(streams.audio, QStringLiteral("a"), reference, offsets);
    storeOffsets(streams.other, QStringLiteral("s"), reference, offsets);
    logLine(QStringLiteral("returnedMd : %@"), {offsets});
    if (getDEBUGDEV() != 0) {
        displayAlert(QStringLiteral("logs"), QStringLiteral("ffmpeg > ptsDtsOffsetMs - fin"), 0, nullptr);
    }
    return offsets;
}

QList<int> offsetTracksFromTranscript(const QString& transcript, const QString& mode)
{
    const Tracks tracks = readTracks(transcript);
    if (tracks.audio[0].pts.isEmpty() || tracks.video[0].pts.isEmpty()) {
        logLine(QStringLiteral("failure              :-( [audioPtsArray count]==%d || [videoPtsArray count]==%d"),
                {static_cast<int>(tracks.audio[0].pts.size()), static_cast<int>(tracks.video[0].pts.size())});
        return {};
    }
    const double videoStart = startOf(tracks.video[0], tracks.videoTimeBase);
    QList<int> offsets;
    QStringList texts;
    for (const Track& track : tracks.audio) {
        if (track.id != unsetId && !track.pts.isEmpty()) {
            offsets.append(trackOffset(tracks, videoStart, startOf(track, tracks.audioTimeBase), mode));
            texts.append(QString::number(offsets.last()));
        }
    }
    logLine(QStringLiteral("returnArray          : %@"), {texts});
    return offsets;
}

QString offsetTracksCommand(const QString& ffmpeg, const QString& source, const QString& transcript)
{
    return formatText(QStringLiteral("\"%@\" -fdebug ts -i %@ &>%@"),
                      {shellDoubleQuoted(ffmpeg), shellWord(source), shellWord(transcript)});
}

QList<int> offsetTracks(const QString& source, const QString& mode)
{
    if (!mkdirCocoa(cachesFolder())) {
        logLine(QStringLiteral("offsetTracks         :-( %@"), {cachesFolder()});
        return {};
    }
    const QString transcript = stringByAppendingPathComponent(cachesFolder(), QStringLiteral("offsetTracks.txt"));
    const QString answer = taskWithStr(offsetTracksCommand(ffmpegPathStr(), source, transcript));
    logDebug(QStringLiteral("offsetTracks         : %@"), {answer});
    QFile file(transcript);
    if (!file.open(QIODevice::ReadOnly)) {
        logLine(QStringLiteral("offsetTracks         :-( %@"), {transcript});
        return {};
    }
    return offsetTracksFromTranscript(decodedUtf8(file.readAll()), mode);
}

} // namespace tavrix
