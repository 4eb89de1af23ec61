// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/avremux.h"

#include "base/text/paths.h"
#include "media/avversions.h"
#include "media/packetclock.h"
#include "quicktime/av/avinput.h"
#include "quicktime/av/soundunpacking.h"

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

constexpr int openSeconds = 20;

struct OutputDeleter {
    void operator()(AVFormatContext* context) const
    {
        if (context->pb != nullptr) {
            avio_closep(&context->pb);
        }
        avformat_free_context(context);
    }
};
using OutputPointer = std::unique_ptr<AVFormatContext, OutputDeleter>;

// Groups of pictures are shorter than this before a part; pictures and sound that are shown together are stored nearer
// to each other than this behind it.
constexpr double secondsBefore = 20;
constexpr double secondsBehind = 3;
constexpr int noKeyBefore = AVERROR(ERANGE);

struct StreamMap {
    int output = -1;
    std::int64_t lastDts = AV_NOPTS_VALUE;
    bool begun = false;                      // a packet was copied
    std::unique_ptr<SoundUnpacker> unpacker; // of sound that cannot be copied
};

// What of the source is copied.
class Selection
{
public:
    explicit Selection(const std::optional<CopyRange>& range) : range_(range) {}

    // 1 to copy the packet, 0 to leave it out, an error where the part cannot be begun.
    int takes(const AVStream& stream, const AVPacket& packet, const std::optional<media::PacketClock::Times>& times,
              StreamMap& map)
    {
        if (!range_ || map.begun) {
            return range_ && isBehind(times) ? 0 : 1;
        }
        if (!times || times->shown < range_->from - secondsBefore || isBehind(times)) {
            return 0;
        }
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            if ((packet.flags & AV_PKT_FLAG_KEY) == 0) {
                skipped_ = true;
                return 0;
            }
            // Without anything left out there is nothing before it.
            if (times->shown > range_->from && skipped_) {
                return noKeyBefore;
            }
        }
        map.begun = true;
        return 1;
    }

    // Whether nothing that follows can belong to the part.
    [[nodiscard]] bool isOver(const std::optional<media::PacketClock::Times>& times) const
    {
        return range_ && times && times->shown > range_->to + 2 * secondsBehind;
    }

private:
    [[nodiscard]] bool isBehind(const std::optional<media::PacketClock::Times>& times) const
    {
        return times && times->shown > range_->to + secondsBehind;
    }

    std::optional<CopyRange> range_;
    bool skipped_ = false;
};

// A tag of another container would name another codec here.
std::uint32_t movTag(const AVOutputFormat* format, const AVCodecParameters& parameters)
{
    const bool known = av_codec_get_id(format->codec_tag, parameters.codec_tag) == parameters.codec_id;
    return known ? parameters.codec_tag : 0;
}

int addStream(AVFormatContext* output, const AVStream* from, StreamMap& map)
{
    AVStream* to = avformat_new_stream(output, nullptr);
    if (to == nullptr) {
        return AVERROR(ENOMEM);
    }
    const int error = avcodec_parameters_copy(to->codecpar, from->codecpar);
    if (error < 0) {
        return error;
    }
    to->codecpar->codec_tag = movTag(output->oformat, *from->codecpar);
    map.unpacker = SoundUnpacker::of(*from, *output->oformat);
    if (map.unpacker) {
        map.unpacker->describe(*to->codecpar);
    }
    to->time_base = from->time_base;
    to->avg_frame_rate = from->avg_frame_rate;
    to->sample_aspect_ratio = from->sample_aspect_ratio;
    to->disposition = from->disposition;
    av_dict_copy(&to->metadata, from->metadata, 0);
    return media::copySideData(*from, *to);
}

bool isWanted(const AVStream* stream)
{
    const AVMediaType type = stream->codecpar->codec_type;
    const bool isMedia = type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO;
    return isMedia && (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

int addStreams(AVFormatContext* input, AVFormatContext* output, std::vector<StreamMap>& map, std::vector<int>& streams)
{
    map.resize(input->nb_streams);
    for (unsigned int index = 0; index < input->nb_streams; ++index) {
        if (!isWanted(input->streams[index])) {
            input->streams[index]->discard = AVDISCARD_ALL;
            continue;
        }
        const int error = addStream(output, input->streams[index], map[index]);
        if (error < 0) {
            return error;
        }
        map[index].output = static_cast<int>(streams.size());
        streams.push_back(static_cast<int>(index));
    }
    return streams.empty() ? AVERROR_STREAM_NOT_FOUND : av_dict_copy(&output->metadata, input->metadata, 0);
}

// Containers leave times out or repeat them; the muxer wants each to be later than the one before.
void mendTimes(AVPacket* packet, StreamMap& map)
{
    if (packet->dts == AV_NOPTS_VALUE) {
        packet->dts =
            packet->pts != AV_NOPTS_VALUE
                ? packet->pts
                : (map.lastDts == AV_NOPTS_VALUE ? 0 : map.lastDts + std::max<std::int64_t>(packet->duration, 1));
    }
    if (map.lastDts != AV_NOPTS_VALUE && packet->dts <= map.lastDts) {
        packet->dts = map.lastDts + 1;
    }
    if (packet->pts == AV_NOPTS_VALUE || packet->pts < packet->dts) {
        packet->pts = packet->dts;
    }
    map.lastDts = packet->dts;
}

void moveBy(AVPacket& packet, std::int64_t ticks)
{
    if (packet.pts != AV_NOPTS_VALUE) {
        packet.pts += ticks;
    }
    if (packet.dts != AV_NOPTS_VALUE) {
        packet.dts += ticks;
    }
}

// How far the packet is moved to lie on the clip's timeline: the clock of a transport stream may step.
std::int64_t shiftOf(const AVPacket& packet, const AVStream& stream,
                     const std::optional<media::PacketClock::Times>& times, std::int64_t origin)
{
    const std::int64_t start = av_rescale_q(origin, AVRational{1, AV_TIME_BASE}, stream.time_base);
    const std::int64_t told = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (!times || told == AV_NOPTS_VALUE) {
        return -start;
    }
    const double stepped = times->shown - static_cast<double>(told - start) * av_q2d(stream.time_base);
    constexpr double leastStep = 0.05;
    return std::abs(stepped) < leastStep ? -start : std::llround(stepped / av_q2d(stream.time_base)) - start;
}

// The packet is empty afterwards.
int store(AVFormatContext* output, AVPacket& packet, StreamMap& map)
{
    packet.stream_index = map.output;
    packet.pos = -1;
    const int error = map.unpacker ? map.unpacker->unpack(packet) : 0;
    if (error == AVERROR_INVALIDDATA) {
        av_packet_unref(&packet); // the judge counts what is missing
        return 0;
    }
    return error < 0 ? error : av_interleaved_write_frame(output, &packet);
}

int copyPackets(AVFormatContext* input, AVFormatContext* output, std::vector<StreamMap>& map, std::int64_t origin,
                const std::optional<CopyRange>& range)
{
    const PacketPointer packet(av_packet_alloc());
    if (packet == nullptr) {
        return AVERROR(ENOMEM);
    }
    media::PacketClock clock(*input, static_cast<double>(origin) / AV_TIME_BASE);
    Selection selection(range);
    int error = 0;
    while ((error = av_read_frame(input, packet.get())) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        if (index >= map.size() || map[index].output < 0) {
            av_packet_unref(packet.get());
            continue;
        }
        const AVStream* from = input->streams[packet->stream_index];
        const AVStream* to = output->streams[map[index].output];
        const auto times = clock.timesOf(*packet);
        if (selection.isOver(times)) {
            return 0;
        }
        const int taken = selection.takes(*from, *packet, times, map[index]);
        if (taken < 0) {
            return taken;
        }
        if (taken == 0) {
            av_packet_unref(packet.get());
            continue;
        }
        moveBy(*packet, shiftOf(*packet, *from, times, origin));
        av_packet_rescale_ts(packet.get(), from->time_base, to->time_base);
        mendTimes(packet.get(), map[index]);
        error = store(output, *packet, map[index]);
        if (error < 0) {
            return error;
        }
    }
    return error == AVERROR_EOF ? 0 : error;
}

int writeHeader(AVFormatContext* output, int movieTimeScale)
{
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "movie_timescale", movieTimeScale, 0);
    const int error = avformat_write_header(output, &options);
    av_dict_free(&options);
    return error;
}

int remux(AvInput& input, const QByteArray& address, int movieTimeScale, const std::optional<CopyRange>& range,
          std::vector<int>& streams)
{
    AVFormatContext* context = nullptr;
    int error = avformat_alloc_output_context2(&context, nullptr, "mov", address.constData());
    if (error < 0) {
        return error;
    }
    const OutputPointer output(context);
    std::vector<StreamMap> map;
    error = addStreams(input.context(), context, map, streams);
    if (error >= 0) {
        error = avio_open(&context->pb, address.constData(), AVIO_FLAG_WRITE);
    }
    if (error >= 0) {
        error = writeHeader(context, movieTimeScale);
    }
    if (error >= 0) {
        error = copyPackets(input.context(), context, map, fileFacts(input).origin, range);
    }
    if (error >= 0) {
        error = av_write_trailer(context);
    }
    if (context->pb != nullptr) {
        const int closed = avio_closep(&context->pb);
        error = error < 0 ? error : closed;
    }
    return error;
}

} // namespace

Result<std::vector<int>, QString> remuxToMov(const QString& sourcePath, const QString& destinationPath,
                                             int movieTimeScale, const std::optional<CopyRange>& range)
{
    const std::unique_ptr<AvInput> input = AvInput::open(sourcePath, openSeconds);
    if (input == nullptr) {
        return Failure{QStringLiteral("the source cannot be opened")};
    }
    // A long clip takes its time to copy; only opening it is limited.
    input->allowSeconds(0);
    std::vector<int> streams;
    const int error = remux(*input, "file:" + nativePath(destinationPath), movieTimeScale, range, streams);
    if (error == noKeyBefore) {
        return remuxToMov(sourcePath, destinationPath, movieTimeScale, std::nullopt);
    }
    if (error < 0) {
        return Failure{avErrorText(error)};
    }
    return streams;
}

} // namespace tavrix
