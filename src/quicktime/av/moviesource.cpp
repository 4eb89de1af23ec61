// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/moviesource.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "sys/descriptor.h"

#include <algorithm>

#include <sys/stat.h>

namespace tavrix
{

namespace
{

constexpr int openSeconds = 20;
constexpr int scanSeconds = 60;
constexpr qint32 usualTimeScale = 600;

// The track of a stream whose container has no edit list: it starts where its first packet does.
TrackAtoms madeUpTrack(const StreamFacts& stream, qint32 timeScale)
{
    TrackAtoms track;
    track.id = static_cast<std::uint32_t>(stream.index + 1);
    track.flags = 1;
    const char* kind = stream.type == AVMEDIA_TYPE_VIDEO      ? "vide"
                       : stream.type == AVMEDIA_TYPE_AUDIO    ? "soun"
                       : stream.type == AVMEDIA_TYPE_SUBTITLE ? "sbtl"
                                                              : "data";
    track.mediaType = kind;
    track.mediaTimeScale = static_cast<std::uint32_t>(timeScale);
    const std::int64_t start = rescaled(stream.start, timeScale, AV_TIME_BASE);
    const std::int64_t duration = rescaled(stream.duration, timeScale, AV_TIME_BASE);
    track.mediaDuration = static_cast<std::uint64_t>(start + duration);
    track.duration = track.mediaDuration;
    track.hasEdits = true;
    if (start > 0) {
        track.edits.push_back({static_cast<std::uint64_t>(start), -1, 65536});
    }
    track.edits.push_back({static_cast<std::uint64_t>(duration), start, 65536});
    return track;
}

// Shown times, ascending, as a sample table of the same scale.
SampleTable tableOf(std::vector<std::int64_t> times)
{
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    SampleTable table;
    for (std::size_t index = 0; index < times.size(); ++index) {
        Sample sample;
        sample.duration = index + 1 < times.size() ? static_cast<std::uint32_t>(times[index + 1] - times[index]) : 1;
        sample.compositionOffset =
            static_cast<std::int32_t>(std::clamp<std::int64_t>(times.front(), INT32_MIN, INT32_MAX));
        table.samples.push_back(sample);
    }
    return table;
}

} // namespace

std::optional<FileIdentity> fileIdentity(const QString& path)
{
    const std::optional<struct stat> status = followedStatus(nativePath(path));
    return status && S_ISREG(status->st_mode) ? std::optional(identityOf(*status)) : std::nullopt;
}

std::shared_ptr<MovieSource> MovieSource::open(const QString& path)
{
    const std::optional<FileIdentity> identity = fileIdentity(path);
    const std::unique_ptr<AvInput> input = identity ? AvInput::open(path, openSeconds) : nullptr;
    if (input == nullptr) {
        return nullptr;
    }
    auto source = std::make_shared<MovieSource>();
    source->path = path;
    source->identity = *identity;
    source->facts = fileFacts(*input);
    source->takeMovieAtoms();
    source->takeTracks();
    return source;
}

void MovieSource::takeMovieAtoms()
{
    timeScale = usualTimeScale;
    duration = rescaled(facts.duration, timeScale, AV_TIME_BASE);
    if (!facts.isMov) {
        return;
    }
    const Descriptor file = openFile(nativePath(path), O_RDONLY);
    if (!file.isOpen()) {
        return;
    }
    atoms = readMovieAtoms(readAtOf(file.get()), identity.size);
    if (!atoms.found || atoms.timeScale == 0 || atoms.timeScale > std::uint32_t(INT32_MAX)) {
        return;
    }
    timeScale = static_cast<qint32>(atoms.timeScale);
    duration = static_cast<qint64>(atoms.duration);
    if (atoms.fragmented) {
        duration = 0;
    }
    for (const TrackAtoms& track : atoms.tracks) {
        if (duration == 0 && !atoms.fragmented) {
            duration = std::max(duration, static_cast<qint64>(track.duration));
        }
    }
    if (duration == 0) {
        duration = rescaled(facts.duration, timeScale, AV_TIME_BASE);
    }
}

void MovieSource::takeTracks()
{
    // The header of a fragmented movie says nothing of its samples.
    const bool useAtoms = atoms.found && !atoms.compressed && !atoms.fragmented && !atoms.tracks.empty();
    if (!useAtoms) {
        for (const StreamFacts& stream : facts.streams) {
            tracks.push_back({madeUpTrack(stream, timeScale), stream, false});
        }
        return;
    }
    for (const TrackAtoms& track : atoms.tracks) {
        const auto stream =
            std::find_if(facts.streams.begin(), facts.streams.end(), [&track](const StreamFacts& candidate) {
                return static_cast<std::uint32_t>(candidate.id) == track.id;
            });
        SourceTrack entry{track, std::nullopt, true};
        if (stream != facts.streams.end()) {
            entry.stream = *stream;
        }
        tracks.push_back(entry);
    }
}

// Containers without a complete index are read once from end to end.
void MovieSource::scanPackets()
{
    scanned_ = true;
    const std::unique_ptr<AvInput> input = AvInput::open(path, openSeconds);
    if (input == nullptr) {
        return;
    }
    input->allowSeconds(scanSeconds);
    std::map<int, std::vector<std::int64_t>> times;
    const PacketPointer packet(av_packet_alloc());
    AVFormatContext* context = input->context();
    int error = packet == nullptr ? AVERROR(ENOMEM) : 0;
    while (error >= 0 && (error = av_read_frame(context, packet.get())) >= 0) {
        const AVStream* stream = context->streams[packet->stream_index];
        const std::int64_t shown = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        const bool isVideo = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        if (isVideo && shown != AV_NOPTS_VALUE && (packet->flags & AV_PKT_FLAG_DISCARD) == 0) {
            const std::int64_t time = av_rescale_q(shown, stream->time_base, AVRational{1, AV_TIME_BASE});
            times[packet->stream_index].push_back(rescaled(time - facts.origin, timeScale, AV_TIME_BASE));
        }
        av_packet_unref(packet.get());
    }
    if (error != AVERROR_EOF) {
        logLine(QStringLiteral("media               :-/ samples not counted to the end : %@ : %@"),
                {avErrorText(error), path});
    }
    for (std::size_t track = 0; track < tracks.size(); ++track) {
        if (tracks[track].stream && error == AVERROR_EOF) {
            tables_[track] = tableOf(times[tracks[track].stream->index]);
        }
    }
}

const SampleTable& MovieSource::sampleTable(std::size_t track)
{
    if (tables_.count(track) == 0) {
        if (tracks[track].fromAtoms) {
            tables_[track] = readSampleTable(tracks[track].atoms, identity.size).value_or(SampleTable());
        } else if (!scanned_) {
            scanPackets();
        }
    }
    return tables_[track];
}

std::vector<std::int64_t> MovieSource::sampleTimes(std::size_t track, const EditTimeline& timeline)
{
    const std::vector<TrackPiece> pieces =
        trackPieces(tracks[track].atoms, static_cast<std::uint32_t>(timeScale), timeline);
    return displayTimes(sampleTable(track), pieces);
}

} // namespace tavrix
