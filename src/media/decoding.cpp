// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/decoding.h"

#include "media/avversions.h"

#include <algorithm>
#include <limits>

namespace tavrix::media
{

namespace
{

class Decoder
{
public:
    static Result<std::unique_ptr<Decoder>> open(const OpenRequest& request, int stream)
    {
        auto input = MediaInput::open(request);
        if (!input) {
            return Failure{input.reason()};
        }
        std::unique_ptr<Decoder> decoder(new Decoder(std::move(*input), stream));
        if (auto started = decoder->start(); !started) {
            return Failure{started.reason()};
        }
        return decoder;
    }

    // Sends the next packet of the stream, or the end; false after the end.
    bool feed()
    {
        if (ended_) {
            return false;
        }
        for (;;) {
            input_->allowSeconds(secondsPerPacket);
            av_packet_unref(packet_.get());
            const int error = av_read_frame(input_->context(), packet_.get());
            if (error < 0) {
                ended_ = true;
                avcodec_send_packet(codec_.get(), nullptr);
                return true;
            }
            if (packet_->stream_index == stream_ && packet_->size > 0) {
                break;
            }
        }
        codec_->skip_frame =
            packet_->pts != AV_NOPTS_VALUE && packet_->pts < wholeFrom_ ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        sent_ = avcodec_send_packet(codec_.get(), packet_.get());
        return true;
    }

    // The next picture that is ready; false when there is none before more is fed.
    bool receive()
    {
        for (;;) {
            const int error = avcodec_receive_frame(codec_.get(), frame_.get());
            if (error >= 0) {
                return true;
            }
            if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
                return false;
            }
            ++errors_;
            if (ended_ && errors_ > mostErrorsAtEnd) {
                return false;
            }
        }
    }

    // For whoever asks only whether the ends decode: pictures need not look well, and before the last quarter of a
    // second those on which no other stands are left out.
    void decodeRoughly()
    {
        const AVStream& stream = *input_->context()->streams[stream_];
        const std::int64_t start = stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time;
        const std::int64_t second = av_rescale(1, stream.time_base.den, stream.time_base.num);
        codec_->skip_loop_filter = AVDISCARD_ALL;
        wholeFrom_ = stream.duration > 0 ? start + stream.duration - second / 4 : start;
    }

    // Whether the index goes back in time, as at the joints of an edit list: it cannot be searched by time then.
    [[nodiscard]] bool stepsBack() const
    {
        AVStream& stream = *input_->context()->streams[stream_];
        const int size = input_->isMovie() ? indexSize(stream) : 0;
        for (int i = 1; i < size; ++i) {
            if (indexEntry(stream, i)->timestamp <= indexEntry(stream, i - 1)->timestamp) {
                return true;
            }
        }
        return false;
    }

    // The number by the index of the packet with the last key picture that is shown, or that a shown one stands on; 0
    // where the index knows none.
    [[nodiscard]] int lastKeyOfIndex() const
    {
        AVStream& stream = *input_->context()->streams[stream_];
        int hidden = 0;
        bool shows = false;
        for (int number = indexSize(stream) - 1; number >= 0; --number) {
            const int flags = indexEntry(stream, number)->flags;
            const bool key = (flags & AVINDEX_KEYFRAME) != 0;
            shows = shows || (flags & AVINDEX_DISCARD_FRAME) == 0;
            if (key && (flags & AVINDEX_DISCARD_FRAME) == 0) {
                return number;
            }
            hidden = key && shows && hidden == 0 ? number : hidden;
        }
        return hidden;
    }

    // Passes over packets without decoding them; false when there are not that many.
    bool skip(int packets)
    {
        for (int skipped = 0; skipped < packets;) {
            input_->allowSeconds(secondsPerPacket);
            av_packet_unref(packet_.get());
            if (av_read_frame(input_->context(), packet_.get()) < 0) {
                return false;
            }
            skipped += packet_->stream_index == stream_ ? 1 : 0;
        }
        return true;
    }

    // To the last key picture. False where the container cannot.
    bool seekToLastKey()
    {
        avcodec_flush_buffers(codec_.get());
        ended_ = false;
        AVStream& stream = *input_->context()->streams[stream_];
        const AVIndexEntry* const key = input_->isMovie() ? indexEntry(stream, lastKeyOfIndex()) : nullptr;
        const std::int64_t end = key != nullptr ? key->timestamp : std::numeric_limits<std::int64_t>::max() / 4;
        return av_seek_frame(input_->context(), stream.index, end, AVSEEK_FLAG_BACKWARD) >= 0;
    }

    [[nodiscard]] bool ended() const { return ended_; }
    // Whether the packet fed last was refused.
    [[nodiscard]] bool refused() const { return !ended_ && sent_ < 0 && sent_ != AVERROR(EAGAIN); }
    [[nodiscard]] bool hidden() const { return !ended_ && (packet_->flags & AV_PKT_FLAG_DISCARD) != 0; }
    [[nodiscard]] const AVFrame& frame() const { return *frame_; }
    [[nodiscard]] const AVPacket& packet() const { return *packet_; }
    [[nodiscard]] bool frameIsDamaged() const
    {
        return frame_->decode_error_flags != 0 || (frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0;
    }
    [[nodiscard]] std::optional<double> seconds(std::int64_t time) const
    {
        if (time == AV_NOPTS_VALUE) {
            return std::nullopt;
        }
        const AVFormatContext& context = *input_->context();
        const bool counts = !input_->isMovie() && context.start_time != AV_NOPTS_VALUE;
        const double origin = counts ? static_cast<double>(context.start_time) / AV_TIME_BASE : 0;
        return static_cast<double>(time) * av_q2d(context.streams[stream_]->time_base) - origin;
    }

private:
    static constexpr int secondsPerPacket = 60;
    static constexpr std::int64_t mostErrorsAtEnd = 1000;

    Decoder(std::unique_ptr<MediaInput> input, int stream) : input_(std::move(input)), stream_(stream) {}

    Result<void> start()
    {
        AVFormatContext& context = *input_->context();
        if (stream_ == anyPicture) {
            stream_ = av_find_best_stream(&context, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        }
        if (stream_ < 0 || unsigned(stream_) >= context.nb_streams) {
            return Failure{"there is no such stream"};
        }
        for (unsigned i = 0; i < context.nb_streams; ++i) {
            context.streams[i]->discard = int(i) == stream_ ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
        }
        const AVCodecParameters& parameters = *context.streams[stream_]->codecpar;
        const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
        if (codec == nullptr) {
            return Failure{std::string("there is no decoder for ") + avcodec_get_name(parameters.codec_id)};
        }
        codec_.reset(avcodec_alloc_context3(codec));
        packet_.reset(av_packet_alloc());
        frame_.reset(av_frame_alloc());
        if (!codec_ || !packet_ || !frame_) {
            return Failure{"out of memory"};
        }
        int error = avcodec_parameters_to_context(codec_.get(), &parameters);
        codec_->pkt_timebase = context.streams[stream_]->time_base;
        codec_->thread_count = 1;
        // As ffmpeg does: what lacks parts is shown all the same.
        codec_->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
        error = error < 0 ? error : avcodec_open2(codec_.get(), codec, nullptr);
        return error < 0 ? Result<void>(Failure{avErrorText(error)}) : Result<void>();
    }

    std::unique_ptr<MediaInput> input_;
    int stream_;
    CodecPointer codec_;
    PacketPointer packet_;
    FramePointer frame_;
    std::int64_t wholeFrom_ = std::numeric_limits<std::int64_t>::min();
    int sent_ = 0;
    bool ended_ = false;
    std::int64_t errors_ = 0;
};

// Tells what precedes the first good picture from what follows it.
class Survey
{
public:
    void frame(std::optional<double> time, bool damaged)
    {
        if (!begun_ && damaged) {
            ++result_.shownBefore;
            return;
        }
        if (!begun_) {
            begun_ = true;
            result_.first = time.value_or(0);
            result_.lostBefore = result_.lost.count;
            result_.lost = {};
        }
        ++result_.shown;
        result_.last = std::max(result_.last, time.value_or(result_.last));
        if (damaged) {
            result_.damaged.add(time);
        } else {
            result_.lastWhole = std::max(result_.lastWhole, time.value_or(result_.lastWhole));
        }
    }
    void refused(std::optional<double> time) { result_.lost.add(time); }

    // Where not one picture is good, all of them are what there is.
    DecodedPictures finish()
    {
        if (!begun_ && result_.shownBefore > 0) {
            result_.shown = result_.shownBefore;
            result_.damaged.count = result_.shownBefore;
            result_.shownBefore = 0;
        }
        return result_;
    }

private:
    DecodedPictures result_;
    bool begun_ = false;
};

// Pictures that are shown before the key picture may stand on others before it, which are not at hand.
bool decodeFromKey(Decoder& decoder, int mostPackets)
{
    std::int64_t key = AV_NOPTS_VALUE;
    std::int64_t frames = 0;
    bool good = true;
    bool begun = false;
    // A decoder that does not know the order beforehand holds pictures back.
    for (int packets = 0; good && (packets <= mostPackets || frames == 0) && decoder.feed();
         packets += decoder.hidden() ? 0 : 1) {
        const std::int64_t time = decoder.packet().pts;
        key = begun ? key : time;
        begun = true;
        good = !decoder.refused() || decoder.hidden() || time < key;
        while (decoder.receive()) {
            const bool stands = decoder.frame().best_effort_timestamp >= key;
            frames += stands ? 1 : 0;
            good = good && !(stands && decoder.frameIsDamaged());
        }
    }
    return good && frames > 0;
}

} // namespace

Result<DecodedPictures> decodePictures(const OpenRequest& request, int stream, const std::optional<Span>& part)
{
    const auto opened = Decoder::open(request, stream);
    if (!opened) {
        return Failure{opened.reason()};
    }
    Decoder& decoder = **opened;
    Survey survey;
    const auto counts = [&part](std::optional<double> time) {
        return !part || (time && part->holds(*time));
    };
    while (decoder.feed()) {
        const AVPacket& packet = decoder.packet();
        const auto time = decoder.seconds(packet.pts == AV_NOPTS_VALUE ? packet.dts : packet.pts);
        if (decoder.refused() && !decoder.hidden() && counts(time)) {
            survey.refused(time);
        }
        while (decoder.receive()) {
            const auto shown = decoder.seconds(decoder.frame().best_effort_timestamp);
            if (counts(shown)) {
                survey.frame(shown, decoder.frameIsDamaged());
            }
        }
    }
    return survey.finish();
}

Result<DecodedEnds> decodeEnds(const OpenRequest& request, int stream, int mostPackets)
{
    const auto opened = Decoder::open(request, stream);
    if (!opened) {
        return Failure{opened.reason()};
    }
    Decoder& decoder = **opened;
    decoder.decodeRoughly();
    DecodedEnds ends;
    bool good = true;
    while (!ends.first && good && decoder.feed()) {
        good = !decoder.refused();
        ends.first = good && decoder.receive() && !decoder.frameIsDamaged();
    }
    if (decoder.stepsBack()) {
        const auto again = Decoder::open(request, stream);
        if (!again) {
            return Failure{again.reason()};
        }
        ends.last = (*again)->skip((*again)->lastKeyOfIndex()) && decodeFromKey(**again, mostPackets);
        return ends;
    }
    if (!decoder.seekToLastKey()) {
        ends.last = ends.first;
        return ends;
    }
    ends.last = decodeFromKey(decoder, mostPackets);
    return ends;
}

} // namespace tavrix::media
