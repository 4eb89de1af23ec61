#include "tools/movencoder/picturedecoder.h"

#include "tools/movencoder/decoderlog.h"

#include <algorithm>
#include <iterator>
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
        awaited_.insert(packet->pts);
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
    ++refused_;
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
        take(std::move(frame), true);
    } else {
        ++refused_;
    }
    return {};
}

Result<PictureDecoder::Answer> PictureDecoder::next()
{
    while (ready_.empty()) {
        if (flushed_) {
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
        end();
    } else if (result < 0) {
        ++refused_;
    } else {
        const bool damaged = isDamaged(*frame);
        take(std::move(frame), damaged);
    }
    return Answer::Picture;
}

void PictureDecoder::take(FramePtr frame, bool damaged)
{
    DecodedPicture picture;
    picture.duration = durationOf(*frame);
    errorsSeen_ = errorsSeen_ || damaged;
    if (frame->best_effort_timestamp != AV_NOPTS_VALUE) {
        picture.time = frame->best_effort_timestamp;
        if (isMadeUp(*picture.time)) {
            return;
        }
        lose(*picture.time);
        const auto own = awaited_.find(*picture.time);
        if (own != awaited_.end()) {
            awaited_.erase(own);
        }
    }
    if (pictures_++ == 0) {
        concealedBefore_ = concealedPictures();
        // Without times all that was refused so far precedes this picture.
        refused_ = awaited_.empty() ? 0 : refused_;
    }
    flagged_ += damaged ? 1 : 0;
    lastTime_ = picture.time;
    lastDuration_ = picture.duration;
    picture.frame = std::move(frame);
    ready_.push_back(std::move(picture));
}

// In place of lost pictures a decoder may hand out others twice.
bool PictureDecoder::isMadeUp(std::int64_t time) const
{
    return errorsSeen_ && packetsArePictures() && lastTime_ && time <= *lastTime_ && !awaited_.contains(time);
}

// Pictures come in the order of their times: what should have come before this one does not come any more. In a damaged
// stream it is lost, refused or silently dropped because a picture that it depends on was refused.
void PictureDecoder::lose(std::int64_t before)
{
    const auto end = awaited_.lower_bound(before);
    errorsSeen_ = errorsSeen_ || refused_ > 0;
    if (pictures_ == 0) {
        refused_ -= std::min<std::int64_t>(refused_, std::distance(awaited_.begin(), end));
    } else if (!errorsSeen_) {
        withoutPicture_ += std::distance(awaited_.begin(), end);
    } else if (packetsArePictures()) {
        std::for_each(awaited_.begin(), end, [this](std::int64_t time) { putLost(time); });
    }
    awaited_.erase(awaited_.begin(), end);
}

void PictureDecoder::putLost(std::int64_t time)
{
    ++lost_;
    refused_ -= refused_ > 0 ? 1 : 0;
    lastTime_ = time;
    DecodedPicture lost;
    lost.time = time;
    lost.duration = lastDuration_;
    ready_.push_back(std::move(lost));
}

void PictureDecoder::end()
{
    flushed_ = true;
    if (pictures_ > 0) {
        lose(INT64_MAX);
    }
}

std::int64_t PictureDecoder::damagedPictures() const
{
    if (pictures_ == 0) {
        return 0;
    }
    return std::max(flagged_, concealedPictures() - concealedBefore_) + lost_ + (flushed_ ? refused_ : 0);
}

} // namespace tavrix::movencoder
