// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/clippictures.h"

#include "media/mediainput.h"
#include "tools/ffmpeg/analysisversions.h"

#include <algorithm>
#include <cmath>
#include <utility>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/mathematics.h>
}

namespace tavrix::front
{

namespace
{

using media::FramePointer;
using media::PacketPointer;

// Beyond this ffmpeg takes a step in the times for a new beginning.
constexpr std::int64_t longestStep = 1;
// Times that begin so close to their greatest value start again at zero soon.
constexpr double latestStart = 90000;

bool isPicture(const AVStream& stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
}

bool hasFittingShape(const AVFrame& a, const AVFrame& b)
{
    return a.width == b.width && a.height == b.height && a.format == b.format && a.color_range == b.color_range &&
           a.colorspace == b.colorspace && av_cmp_q(a.sample_aspect_ratio, b.sample_aspect_ratio) == 0;
}

} // namespace

std::unique_ptr<ClipPictures> ClipPictures::open(const std::string& url, Purpose purpose)
{
    AVDictionary* options = nullptr;
    av_dict_set(&options, "scan_all_pmts", "1", 0);
    av_dict_set(&options, "format_whitelist", media::sourceDemuxers, 0);
    av_dict_set(&options, "protocol_whitelist", media::localProtocols, 0);
    AVFormatContext* context = avformat_alloc_context();
    if (context != nullptr) {
        context->flags |= AVFMT_FLAG_NONBLOCK;
        context->debug |= purpose == Purpose::Description ? FF_FDEBUG_TS : 0;
    }
    const int opened = context == nullptr ? -1 : avformat_open_input(&context, url.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (opened < 0) {
        return nullptr;
    }
    std::unique_ptr<ClipPictures> clip(new ClipPictures(purpose));
    clip->container_.reset(context);
    if (avformat_find_stream_info(context, nullptr) < 0) {
        return nullptr;
    }
    clip->nameLayouts();
    return clip;
}

void ClipPictures::nameLayouts()
{
    for (unsigned i = 0; i < container_->nb_streams; ++i) {
        const std::string layout = guessedLayout(*container_->streams[i]);
        if (!layout.empty()) {
            remarks_ += "Guessed Channel Layout for Input Stream #0." + std::to_string(i) + " : " + layout + '\n';
        }
    }
}

bool ClipPictures::isPlain() const
{
    int pictures = 0;
    for (unsigned i = 0; i < container_->nb_streams; ++i) {
        const AVStream& stream = *container_->streams[i];
        pictures += isPicture(stream) ? 1 : 0;
        const bool odd = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 ||
                         stream.codecpar->codec_type == AVMEDIA_TYPE_ATTACHMENT;
        if (odd || (purpose_ == Purpose::Output && hasUnusualSideData(stream))) {
            return false;
        }
    }
    return pictures == 1 && container_->nb_chapters == 0 && container_->start_time != AV_NOPTS_VALUE;
}

bool ClipPictures::chooseStream()
{
    for (unsigned i = 0; i < container_->nb_streams; ++i) {
        AVStream& stream = *container_->streams[i];
        if (isPicture(stream)) {
            stream_ = static_cast<int>(i);
        } else {
            stream.discard = AVDISCARD_ALL;
        }
    }
    if (!isPlain()) {
        return false;
    }
    if (stream().start_time == AV_NOPTS_VALUE) {
        return false;
    }
    rate_ = av_guess_frame_rate(container_.get(), &stream(), nullptr);
    return rate_.num > 0 && rate_.den > 0 && av_q2d(rate_) < 1000;
}

bool ClipPictures::openDecoder()
{
    const AVCodec* const codec = avcodec_find_decoder(stream().codecpar->codec_id);
    decoder_.reset(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
    if (!decoder_ || avcodec_parameters_to_context(decoder_.get(), stream().codecpar) < 0) {
        return false;
    }
    decoder_->framerate = stream().avg_frame_rate;
    decoder_->pkt_timebase = stream().time_base;
    decoder_->thread_count = 0; // one for each core
    frame_.reset(av_frame_alloc());
    return frame_ && avcodec_open2(decoder_.get(), codec, nullptr) >= 0;
}

bool ClipPictures::decode(const std::function<bool(const Picture&)>& receiver)
{
    const PacketPointer packet(av_packet_alloc());
    if (!packet || !chooseStream() || !openDecoder()) {
        return false;
    }
    while (av_read_frame(container_.get(), packet.get()) >= 0) {
        bool usual = true;
        bool enough = false;
        if (packet->stream_index == stream_) {
            ++packets_;
            usual = isUsual(*packet) && avcodec_send_packet(decoder_.get(), packet.get()) >= 0 &&
                    takePictures(receiver, enough);
        }
        av_packet_unref(packet.get());
        if (!usual || enough) {
            return usual;
        }
    }
    return false;
}

bool ClipPictures::takePictures(const std::function<bool(const Picture&)>& receiver, bool& enough)
{
    while (!enough) {
        const int got = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (got == AVERROR(EAGAIN)) {
            return true;
        }
        if (got < 0 || !isUsual(*frame_)) {
            return false;
        }
        enough = !receiver(placed(*frame_));
        av_frame_unref(frame_.get());
    }
    return true;
}

bool ClipPictures::isUsual(const AVPacket& packet)
{
    const bool whole = packet.dts != AV_NOPTS_VALUE && (packet.flags & AV_PKT_FLAG_CORRUPT) == 0 && packet.size > 0;
    if (!whole || av_packet_get_side_data(&packet, AV_PKT_DATA_PARAM_CHANGE, nullptr) != nullptr) {
        return false;
    }
    const double seconds = static_cast<double>(packet.dts) * av_q2d(stream().time_base);
    const std::int64_t step = lastDts_ == AV_NOPTS_VALUE ? 0 : packet.dts - lastDts_;
    lastDts_ = packet.dts;
    return seconds < latestStart && step >= 0 && av_rescale_q(step, stream().time_base, {1, 1}) <= longestStep;
}

bool ClipPictures::isUsual(const AVFrame& frame)
{
    const bool whole =
        (frame.flags & AV_FRAME_FLAG_CORRUPT) == 0 && frame.decode_error_flags == 0 && frame.pts != AV_NOPTS_VALUE;
    const bool rising = lastPts_ == AV_NOPTS_VALUE || frame.pts > lastPts_;
    lastPts_ = frame.pts;
    ++pictures_;
    if (!whole || !rising || frame.best_effort_timestamp != frame.pts) {
        return false;
    }
    if (!first_) {
        first_.reset(av_frame_clone(&frame));
        const bool upright = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX) == nullptr;
        return first_ && (upright || purpose_ == Purpose::Description);
    }
    return hasFittingShape(frame, *first_);
}

// Where times may step, the output begins with the first picture, however early the sound is.
std::int64_t ClipPictures::startTime() const
{
    if ((container_->iformat->flags & AVFMT_TS_DISCONT) == 0) {
        return container_->start_time;
    }
    return std::max(container_->start_time, av_rescale_q(stream().start_time, stream().time_base, AV_TIME_BASE_Q));
}

ClipPictures::Picture ClipPictures::placed(const AVFrame& frame) const
{
    const AVRational place = av_inv_q(rate_);
    // More digits than whole pictures, and a hair away from the middle between two of them.
    AVRational fine = place;
    const int digits = std::clamp(29 - static_cast<int>(std::log2(place.den)), 0, 16);
    fine.den <<= digits;
    const std::int64_t offset = av_rescale_q(-startTime(), AV_TIME_BASE_Q, stream().time_base);
    double at = static_cast<double>(av_rescale_q(frame.pts + offset, stream().time_base, fine)) / (1 << digits);
    constexpr double hair = 1.0 / (1 << 17);
    at += at > 0 ? hair : -hair;
    double length = 1;
    const double said = static_cast<double>(durationOf(frame)) * av_q2d(stream().time_base) / av_q2d(place);
    if (std::lrintf(static_cast<float>(said)) > 0) {
        length = static_cast<double>(std::lrintf(static_cast<float>(said)));
    }
    return {frame, at, length, packets_, pictures_ == 1};
}

} // namespace tavrix::front
