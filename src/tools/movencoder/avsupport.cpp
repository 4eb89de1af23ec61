// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/avsupport.h"

#include <cstring>

namespace tavrix::movencoder
{

#ifdef AV_FRAME_FLAG_INTERLACED

Fields fieldsOf(const AVFrame& picture)
{
    return {(picture.flags & AV_FRAME_FLAG_INTERLACED) != 0, (picture.flags & AV_FRAME_FLAG_TOP_FIELD_FIRST) != 0};
}

void setFields(AVFrame& picture, Fields fields)
{
    picture.flags &= ~(AV_FRAME_FLAG_INTERLACED | AV_FRAME_FLAG_TOP_FIELD_FIRST);
    picture.flags |= fields.interlaced ? AV_FRAME_FLAG_INTERLACED : 0;
    picture.flags |= fields.topFirst ? AV_FRAME_FLAG_TOP_FIELD_FIRST : 0;
}

#else

Fields fieldsOf(const AVFrame& picture)
{
    return {picture.interlaced_frame != 0, picture.top_field_first != 0};
}

void setFields(AVFrame& picture, Fields fields)
{
    picture.interlaced_frame = fields.interlaced ? 1 : 0;
    picture.top_field_first = fields.topFirst ? 1 : 0;
}

#endif

std::int64_t durationOf(const AVFrame& picture)
{
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
    return picture.duration;
#else
    return picture.pkt_duration;
#endif
}

std::optional<DisplayMatrix> displayMatrixOf(const AVStream& stream)
{
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVPacketSideData* side =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    if (side != nullptr) {
        data = side->data;
        size = side->size;
    }
#elif LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(59, 0, 100)
    data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
#else
    int count = 0;
    data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &count);
    size = static_cast<std::size_t>(count);
#endif
    DisplayMatrix matrix;
    if (data == nullptr || size < sizeof matrix) {
        return std::nullopt;
    }
    std::memcpy(matrix.data(), data, sizeof matrix);
    return matrix;
}

bool setDisplayMatrix(AVStream& stream, const DisplayMatrix& matrix)
{
    std::uint8_t* data = nullptr;
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    AVCodecParameters& parameters = *stream.codecpar;
    AVPacketSideData* side = av_packet_side_data_new(&parameters.coded_side_data, &parameters.nb_coded_side_data,
                                                     AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix, 0);
    data = side == nullptr ? nullptr : side->data;
#else
    data = av_stream_new_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix);
#endif
    if (data == nullptr) {
        return false;
    }
    std::memcpy(data, matrix.data(), sizeof matrix);
    return true;
}

} // namespace tavrix::movencoder
