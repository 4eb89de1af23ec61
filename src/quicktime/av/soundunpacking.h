// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Uncompressed sound in a form that QuickTime files do not know, as plain samples.

#include "media/avowners.h"

#include <memory>
#include <string>

namespace tavrix
{

// Whether sound of libavcodec's codec of that name is uncompressed, and no QuickTime file holds it as it is.
[[nodiscard]] bool isUnpackedInMovies(const std::string& codec);

class SoundUnpacker
{
public:
    // Nothing for sound that the format stores as it is, that is compressed, or whose samples nobody can read.
    [[nodiscard]] static std::unique_ptr<SoundUnpacker> of(const AVStream& stream, const AVOutputFormat& format);

    // Describes the plain samples in the copied parameters of the stream.
    void describe(AVCodecParameters& parameters) const;
    // Puts the samples in place of the packet's bytes; its times stay. An error of the libraries; AVERROR_INVALIDDATA
    // for a packet that is damaged.
    [[nodiscard]] int unpack(AVPacket& packet);

private:
    SoundUnpacker() = default;

    media::CodecPointer decoder_;
    media::FramePointer frame_;
    AVSampleFormat samples_ = AV_SAMPLE_FMT_NONE; // 16 or 32 bits, channels side by side
    int channels_ = 0;
};

} // namespace tavrix
