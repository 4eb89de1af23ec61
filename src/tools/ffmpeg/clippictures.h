// SPDX-License-Identifier: GPL-3.0-or-later
// The first pictures of a clip, as ffmpeg would take them for an output of even rate.
#pragma once

#include "media/avowners.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tavrix::front
{

// A clip that the libraries have looked at. Whatever is unusual about it makes it unfit: then only ffmpeg itself can
// say what it would do.
class ClipPictures
{
public:
    // For a description the libraries tell every packet that they read, and it does not matter how a picture is turned.
    enum class Purpose { Output, Description };
    // Null when the clip cannot be opened.
    [[nodiscard]] static std::unique_ptr<ClipPictures> open(const std::string& url, Purpose purpose = Purpose::Output);

    ClipPictures(const ClipPictures&) = delete;
    ClipPictures& operator=(const ClipPictures&) = delete;
    ~ClipPictures() = default;

    [[nodiscard]] AVFormatContext& container() const { return *container_; }
    // What ffmpeg says while it opens the clip, beside its description: "" or lines.
    [[nodiscard]] const std::string& remarks() const { return remarks_; }
    // Whether there is one stream of pictures and nothing about the clip that asks for more than decoding it.
    [[nodiscard]] bool isPlain() const;
    [[nodiscard]] AVStream& stream() const { return *container_->streams[stream_]; }
    // Pictures a second of an output of even rate.
    [[nodiscard]] AVRational rate() const { return rate_; }
    // Of the decoder.
    [[nodiscard]] int bitsPerSample() const { return decoder_ ? decoder_->bits_per_raw_sample : 0; }

    struct Picture {
        const AVFrame& frame;
        double place;  // where it belongs, in pictures of the output
        double length; // in the same measure
        int packet;    // by which packet of the stream it came, from 1 on
        bool isFirst;
    };
    // Hands the pictures over one by one, until the receiver has enough and says false. False when something is unusual
    // before that, the end of the clip included.
    [[nodiscard]] bool decode(const std::function<bool(const Picture&)>& receiver);

private:
    explicit ClipPictures(Purpose purpose) : purpose_(purpose) {}
    [[nodiscard]] bool chooseStream();
    void nameLayouts();
    [[nodiscard]] bool openDecoder();
    [[nodiscard]] bool takePictures(const std::function<bool(const Picture&)>& receiver, bool& enough);
    [[nodiscard]] bool isUsual(const AVPacket& packet);
    [[nodiscard]] bool isUsual(const AVFrame& frame);
    [[nodiscard]] std::int64_t startTime() const; // microseconds
    [[nodiscard]] Picture placed(const AVFrame& frame) const;

    Purpose purpose_;
    media::InputPointer container_;
    media::CodecPointer decoder_;
    media::FramePointer frame_;
    media::FramePointer first_; // its shape is that of all
    int stream_ = -1;
    AVRational rate_ = {0, 1};
    std::string remarks_;
    int packets_ = 0;
    int pictures_ = 0;
    std::int64_t lastDts_ = AV_NOPTS_VALUE;
    std::int64_t lastPts_ = AV_NOPTS_VALUE;
};

} // namespace tavrix::front
