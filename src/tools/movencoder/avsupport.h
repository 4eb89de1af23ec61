#pragma once

#include <cstdint>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

// Ownership of the FFmpeg libraries' objects, and their error texts.
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

} // namespace tavrix::movencoder
