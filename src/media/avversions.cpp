// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/avversions.h"

#include <array>
#include <cstring>

namespace tavrix::media
{

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(59, 24, 100)

int channelsOf(const AVCodecParameters& parameters)
{
    return parameters.ch_layout.nb_channels;
}

std::string layoutOf(const AVCodecParameters& parameters)
{
    std::array<char, 64> text{};
    if (parameters.ch_layout.order != AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_describe(&parameters.ch_layout, text.data(), text.size());
    }
    return text.data();
}

#else

int channelsOf(const AVCodecParameters& parameters)
{
    return parameters.channels;
}

std::string layoutOf(const AVCodecParameters& parameters)
{
    std::array<char, 64> text{};
    if (parameters.channel_layout != 0) {
        av_get_channel_layout_string(text.data(), int(text.size()), parameters.channels, parameters.channel_layout);
    }
    return text.data();
}

#endif

std::optional<DisplayMatrix> displayMatrixOf(const AVStream& stream)
{
    DisplayMatrix matrix{};
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVPacketSideData* const data =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    const std::uint8_t* const bytes = data == nullptr ? nullptr : data->data;
    const std::size_t size = data == nullptr ? 0 : data->size;
#else
#if LIBAVFORMAT_VERSION_MAJOR >= 59
    std::size_t size = 0;
#else
    int size = 0;
#endif
    const std::uint8_t* const bytes = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
#endif
    if (bytes == nullptr || std::size_t(size) < sizeof(matrix)) {
        return std::nullopt;
    }
    std::memcpy(matrix.data(), bytes, sizeof(matrix));
    return matrix;
}

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)

int copySideData(const AVStream& /*from*/, AVStream& /*to*/)
{
    return 0; // among the parameters
}

#else

int copySideData(const AVStream& from, AVStream& to)
{
    for (int number = 0; number < from.nb_side_data; ++number) {
        const AVPacketSideData& data = from.side_data[number];
        std::uint8_t* const copy = av_stream_new_side_data(&to, data.type, data.size);
        if (copy == nullptr) {
            return AVERROR(ENOMEM);
        }
        std::memcpy(copy, data.data, std::size_t(data.size));
    }
    return 0;
}

#endif

#if LIBAVFORMAT_VERSION_MAJOR >= 59

int indexSize(AVStream& stream)
{
    return avformat_index_get_entries_count(&stream);
}

const AVIndexEntry* indexEntry(AVStream& stream, int number)
{
    return avformat_index_get_entry(&stream, number);
}

#else

int indexSize(AVStream& stream)
{
    return stream.nb_index_entries;
}

const AVIndexEntry* indexEntry(AVStream& stream, int number)
{
    return number >= 0 && number < stream.nb_index_entries ? &stream.index_entries[number] : nullptr;
}

#endif

} // namespace tavrix::media
