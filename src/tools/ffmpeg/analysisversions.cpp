// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/analysisversions.h"

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace tavrix::front
{

bool isAnalysisProven()
{
    constexpr unsigned ofVersion51 = 59;
    return avformat_version() >> 16U == ofVersion51 && LIBAVFORMAT_VERSION_MAJOR == ofVersion51;
}

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(59, 24, 100)

std::string guessedLayout(AVStream& stream)
{
    AVChannelLayout& layout = stream.codecpar->ch_layout;
    const bool told = layout.order != AV_CHANNEL_ORDER_UNSPEC;
    if (stream.codecpar->codec_type != AVMEDIA_TYPE_AUDIO || told || layout.nb_channels <= 0) {
        return {};
    }
    av_channel_layout_default(&layout, layout.nb_channels);
    std::array<char, 64> text{};
    if (layout.order != AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_describe(&layout, text.data(), text.size());
    }
    return text.data();
}

#else

std::string guessedLayout(AVStream& /*stream*/)
{
    return {};
}

#endif

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)

bool hasUnusualSideData(const AVStream& stream)
{
    const AVPacketSideData* const data = stream.codecpar->coded_side_data;
    return std::any_of(data, data + stream.codecpar->nb_coded_side_data,
                       [](const AVPacketSideData& item) { return item.type != AV_PKT_DATA_CPB_PROPERTIES; });
}

bool copyEncoderSideData(const AVCodecContext& /*encoder*/, AVStream& /*stream*/)
{
    return true; // among the parameters
}

#else

bool hasUnusualSideData(const AVStream& stream)
{
    const AVPacketSideData* const data = stream.side_data;
    return std::any_of(data, data + stream.nb_side_data,
                       [](const AVPacketSideData& item) { return item.type != AV_PKT_DATA_CPB_PROPERTIES; });
}

bool copyEncoderSideData(const AVCodecContext& encoder, AVStream& stream)
{
    for (int i = 0; i < encoder.nb_coded_side_data; ++i) {
        const AVPacketSideData& data = encoder.coded_side_data[i];
        std::uint8_t* const copy = av_stream_new_side_data(&stream, data.type, data.size);
        if (copy == nullptr) {
            return false;
        }
        std::memcpy(copy, data.data, static_cast<std::size_t>(data.size));
    }
    return true;
}

#endif

#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 7, 100)

std::int64_t durationOf(const AVFrame& picture)
{
    return picture.duration;
}

FieldOrder fieldOrderOf(const AVFrame& picture)
{
    return {(picture.flags & AV_FRAME_FLAG_INTERLACED) != 0, (picture.flags & AV_FRAME_FLAG_TOP_FIELD_FIRST) != 0};
}

#else

std::int64_t durationOf(const AVFrame& picture)
{
    return picture.pkt_duration;
}

FieldOrder fieldOrderOf(const AVFrame& picture)
{
    return {picture.interlaced_frame != 0, picture.top_field_first != 0};
}

#endif

double quantiserOf(const AVPacket& packet)
{
#if LIBAVCODEC_VERSION_MAJOR >= 59
    std::size_t size = 0;
#else
    int size = 0;
#endif
    const std::uint8_t* const data = av_packet_get_side_data(&packet, AV_PKT_DATA_QUALITY_STATS, &size);
    if (data == nullptr || size < 4) {
        return -0.0;
    }
    // The least significant byte comes first.
    const unsigned lambda = data[0] | unsigned(data[1]) << 8U | unsigned(data[2]) << 16U | unsigned(data[3]) << 24U;
    return static_cast<double>(lambda) / FF_QP2LAMBDA;
}

} // namespace tavrix::front
