// SPDX-License-Identifier: GPL-3.0-or-later
// Ownership of the FFmpeg libraries' objects, and their error texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
}

namespace tavrix::media
{

struct AvDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFormatContext* container) const { avformat_close_input(&container); }
};
using FramePointer = std::unique_ptr<AVFrame, AvDeleter>;
using PacketPointer = std::unique_ptr<AVPacket, AvDeleter>;
using CodecPointer = std::unique_ptr<AVCodecContext, AvDeleter>;
using InputPointer = std::unique_ptr<AVFormatContext, AvDeleter>; // an opened input only

// The libraries' words for their error number.
[[nodiscard]] std::string avErrorText(int code);

// The libraries say nothing on the error stream any more, in the whole process: a tool's words are its own.
void silenceLibraries();

} // namespace tavrix::media
