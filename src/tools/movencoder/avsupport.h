#pragma once

// Ownership of the FFmpeg libraries' objects, their error texts, and what differs between their versions.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace tavrix::movencoder
{

struct AvDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using FramePtr = std::unique_ptr<AVFrame, AvDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, AvDeleter>;
using CodecPtr = std::unique_ptr<AVCodecContext, AvDeleter>;
using ScalerPtr = std::unique_ptr<SwsContext, AvDeleter>;

[[nodiscard]] std::string avErrorText(int code);

// How the lines of a picture belong to its fields.
struct Fields {
    bool interlaced = false;
    bool topFirst = false;
};
[[nodiscard]] Fields fieldsOf(const AVFrame& picture);
void setFields(AVFrame& picture, Fields fields);

// In the time base of the stream; 0 when it is not known.
[[nodiscard]] std::int64_t durationOf(const AVFrame& picture);

using DisplayMatrix = std::array<std::int32_t, 9>;
// Nothing for a stream that is shown as it is.
[[nodiscard]] std::optional<DisplayMatrix> displayMatrixOf(const AVStream& stream);
// False without memory.
[[nodiscard]] bool setDisplayMatrix(AVStream& stream, const DisplayMatrix& matrix);

#if LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(61, 0, 100)
using WrittenBytes = const std::uint8_t*;
#else
using WrittenBytes = std::uint8_t*;
#endif

} // namespace tavrix::movencoder
