#include "quicktime/avremux.h"

#include "base/paths.h"
#include "media/avversions.h"
#include "quicktime/avinput.h"

#include <algorithm>

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

struct StreamMap {
    int output = -1;
    std::int64_t lastDts = AV_NOPTS_VALUE;
};

// A tag of another container would name another codec here.
std::uint32_t movTag(const AVOutputFormat* format, const AVCodecParameters& parameters)
{
    const bool known = av_codec_get_id(format->codec_tag, parameters.codec_tag) == parameters.codec_id;
    return known ? parameters.codec_tag : 0;
}

int addStream(AVFormatContext* output, const AVStream* from)
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
        const int error = addStream(output, input->streams[index]);
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

int copyPackets(AVFormatContext* input, AVFormatContext* output, std::vector<StreamMap>& map, std::int64_t origin)
{
    const PacketPointer packet(av_packet_alloc());
    if (packet == nullptr) {
        return AVERROR(ENOMEM);
    }
    int error = 0;
    while ((error = av_read_frame(input, packet.get())) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        if (index >= map.size() || map[index].output < 0) {
            av_packet_unref(packet.get());
            continue;
        }
        const AVStream* from = input->streams[packet->stream_index];
        const AVStream* to = output->streams[map[index].output];
        const std::int64_t start = av_rescale_q(origin, AVRational{1, AV_TIME_BASE}, from->time_base);
        if (packet->pts != AV_NOPTS_VALUE) {
            packet->pts -= start;
        }
        if (packet->dts != AV_NOPTS_VALUE) {
            packet->dts -= start;
        }
        av_packet_rescale_ts(packet.get(), from->time_base, to->time_base);
        mendTimes(packet.get(), map[index]);
        packet->stream_index = map[index].output;
        packet->pos = -1;
        error = av_interleaved_write_frame(output, packet.get());
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

int remux(AvInput& input, const QByteArray& address, int movieTimeScale, std::vector<int>& streams)
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
        error = copyPackets(input.context(), context, map, fileFacts(input).origin);
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
                                             int movieTimeScale)
{
    const std::unique_ptr<AvInput> input = AvInput::open(sourcePath, openSeconds);
    if (input == nullptr) {
        return Failure{QStringLiteral("the source cannot be opened")};
    }
    // A long clip takes its time to copy; only opening it is limited.
    input->allowSeconds(0);
    std::vector<int> streams;
    const int error = remux(*input, "file:" + nativePath(destinationPath), movieTimeScale, streams);
    if (error < 0) {
        return Failure{avErrorText(error)};
    }
    return streams;
}

} // namespace tavrix
