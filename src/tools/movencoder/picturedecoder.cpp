// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/picturedecoder.h"

#include <string>

namespace tavrix::movencoder
{

namespace
{

// A decoder of Motion-JPEG hands out what it has of a damaged picture without a word, unless it is told to be strict.
bool needsStrictness(AVCodecID codec)
{
    return codec == AV_CODEC_ID_MJPEG;
}

bool isDamaged(const AVFrame& picture)
{
    return picture.decode_error_flags != 0 || (picture.flags & AV_FRAME_FLAG_CORRUPT) != 0;
}

} // namespace

Result<CodecPtr> PictureDecoder::makeDecoder(const AVStream& stream, bool strict)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        return Failure{std::string("there is no decoder for its video (") + avcodec_get_name(parameters.codec_id) +
                       ")"};
    }
    CodecPtr decoder(avcodec_alloc_context3(codec));
    if (!decoder) {
        return Failure{"out of memory"};
    }
    int result = avcodec_parameters_to_context(decoder.get(), &parameters);
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = 0;
    if (strict) {
        decoder->err_recognition |= AV_EF_EXPLODE;
    }
    if (result >= 0) {
        result = avcodec_open2(decoder.get(), codec, nullptr);
    }
    if (result < 0) {
        return Failure{"its video decoder does not start: " + avErrorText(result)};
    }
    return decoder;
}

Result<std::unique_ptr<PictureDecoder>> PictureDecoder::open(const AVStream& stream)
{
    auto decoder = makeDecoder(stream, needsStrictness(stream.codecpar->codec_id));
    if (!decoder) {
        return Failure{decoder.reason()};
    }
    std::unique_ptr<PictureDecoder> self(new PictureDecoder);
    self->stream_ = &stream;
    self->decoder_ = *std::move(decoder);
    return self;
}

Result<void> PictureDecoder::send(const AVPacket* packet)
{
    ended_ = packet == nullptr;
    const bool shown = packet != nullptr && (packet->flags & AV_PKT_FLAG_DISCARD) == 0;
    if (shown && packet->pts != AV_NOPTS_VALUE) {
        pictures_.await(packet->pts);
    }
    const int result = avcodec_send_packet(decoder_.get(), packet);
    if (result == AVERROR(ENOMEM)) {
        return Failure{"out of memory"};
    }
    if (result >= 0 || result == AVERROR_EOF) {
        return {};
    }
    if (packet != nullptr && needsStrictness(stream_->codecpar->codec_id)) {
        return sendAgain(*packet);
    }
    pictures_.refuse();
    return {};
}

// What the strict decoder refuses is decoded as far as it goes.
Result<void> PictureDecoder::sendAgain(const AVPacket& packet)
{
    if (!lenient_) {
        auto decoder = makeDecoder(*stream_, false);
        if (!decoder) {
            return Failure{decoder.reason()};
        }
        lenient_ = *std::move(decoder);
    }
    ++strictlyDamaged_;
    FramePtr frame(av_frame_alloc());
    if (!frame) {
        return Failure{"out of memory"};
    }
    int result = avcodec_send_packet(lenient_.get(), &packet);
    if (result >= 0) {
        result = avcodec_receive_frame(lenient_.get(), frame.get());
    }
    if (result >= 0) {
        pictures_.take(std::move(frame), true);
    } else {
        pictures_.refuse();
    }
    return {};
}

Result<PictureDecoder::Answer> PictureDecoder::next()
{
    while (pictures_.isEmpty()) {
        if (pictures_.hasEnded()) {
            return Answer::End;
        }
        const auto answer = receive();
        if (!answer || *answer == Answer::NeedsPacket) {
            return answer;
        }
    }
    return Answer::Picture;
}

Result<PictureDecoder::Answer> PictureDecoder::receive()
{
    FramePtr frame(av_frame_alloc());
    const int result = frame ? avcodec_receive_frame(decoder_.get(), frame.get()) : AVERROR(ENOMEM);
    if (result == AVERROR(ENOMEM)) {
        return Failure{"out of memory"};
    }
    if (result == AVERROR(EAGAIN) && !ended_) {
        return Answer::NeedsPacket;
    }
    if (result == AVERROR_EOF || result == AVERROR(EAGAIN)) {
        pictures_.end();
    } else if (result < 0) {
        pictures_.refuse();
    } else {
        const bool damaged = isDamaged(*frame);
        pictures_.take(std::move(frame), damaged);
    }
    return Answer::Picture;
}

} // namespace tavrix::movencoder
