// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/picturefinder.h"

#include <algorithm>
#include <cmath>

namespace tavrix::media
{

namespace
{

constexpr std::size_t mostHeld = 24;
// Times are rounded; neighbours lie further apart than this.
constexpr double slack = 0.0005;
constexpr int secondsPerPacket = 20;

} // namespace

PictureFinder::PictureFinder(std::unique_ptr<MediaInput> input, StreamFacts facts, double origin,
                             const std::atomic<bool>& cancelled)
    : input_(std::move(input)), facts_(std::move(facts)), origin_(origin), cancelled_(cancelled)
{
}

Result<std::unique_ptr<PictureFinder>> PictureFinder::open(const std::string& path, const std::atomic<bool>& cancelled)
{
    OpenRequest request;
    request.path = path;
    auto input = MediaInput::open(request);
    if (!input) {
        return Failure{input.reason()};
    }
    const SourceFacts facts = sourceFactsOf(**input, path);
    const StreamFacts* const picture = facts.chosen(Kind::Picture);
    if (picture == nullptr) {
        return Failure{"it holds no pictures"};
    }
    std::unique_ptr<PictureFinder> finder(new PictureFinder(std::move(*input), *picture, facts.origin, cancelled));
    if (const auto started = finder->start(); !started) {
        return Failure{started.reason()};
    }
    return finder;
}

Result<void> PictureFinder::start()
{
    AVFormatContext& context = *input_->context();
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        context.streams[i]->discard = static_cast<int>(i) == facts_.index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVStream& stream = *context.streams[facts_.index];
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    codec_.reset(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
    packet_.reset(av_packet_alloc());
    frame_.reset(av_frame_alloc());
    if (!codec_ || !packet_ || !frame_) {
        return Failure{"its pictures cannot be decoded"};
    }
    int error = avcodec_parameters_to_context(codec_.get(), stream.codecpar);
    codec_->pkt_timebase = stream.time_base;
    codec_->thread_count = 1;
    error = error < 0 ? error : avcodec_open2(codec_.get(), codec, nullptr);
    return error < 0 ? Result<void>(Failure{avErrorText(error)}) : Result<void>();
}

double PictureFinder::secondsOf(std::int64_t time) const
{
    return static_cast<double>(time) * av_q2d(input_->context()->streams[facts_.index]->time_base) - origin_;
}

bool PictureFinder::feed()
{
    while (!cancelled_ && !fed_) {
        input_->allowSeconds(secondsPerPacket);
        av_packet_unref(packet_.get());
        const int error = av_read_frame(input_->context(), packet_.get());
        if (error < 0) {
            fed_ = true;
            avcodec_send_packet(codec_.get(), nullptr);
            return true;
        }
        if (packet_->stream_index == facts_.index) {
            // A packet that is refused is a picture that is missing.
            avcodec_send_packet(codec_.get(), packet_.get());
            return true;
        }
    }
    return false;
}

bool PictureFinder::decodeNext()
{
    while (!cancelled_ && !ended_) {
        const int error = avcodec_receive_frame(codec_.get(), frame_.get());
        if (error == AVERROR_EOF || (error < 0 && error != AVERROR(EAGAIN) && fed_)) {
            ended_ = true;
        } else if (error < 0) {
            if (!feed() && fed_) {
                ended_ = true;
            }
        } else if (frame_->best_effort_timestamp != AV_NOPTS_VALUE) {
            const double start = secondsOf(frame_->best_effort_timestamp);
            if (held_.empty() || start > held_.back().start + slack) {
                held_.push_back({FramePointer(av_frame_clone(frame_.get())), start});
                if (held_.size() > mostHeld) {
                    held_.pop_front();
                }
                return held_.back().frame != nullptr;
            }
        }
    }
    return false;
}

std::optional<FoundPicture> PictureFinder::amongHeld(double seconds) const
{
    const auto behind = std::ranges::find_if(held_, [seconds](const Held& one) { return one.start > seconds + slack; });
    if (behind == held_.begin() || (behind == held_.end() && !ended_)) {
        return std::nullopt;
    }
    const Held& found = *std::prev(behind);
    const double rate = facts_.meanRate.value();
    const double length = rate > 0 ? 1 / rate : 0;
    return FoundPicture{found.frame.get(), found.start, behind == held_.end() ? found.start + length : behind->start};
}

void PictureFinder::seekTo(double seconds)
{
    const AVStream& stream = *input_->context()->streams[facts_.index];
    const auto time = static_cast<std::int64_t>(std::floor((seconds + origin_) / av_q2d(stream.time_base)));
    input_->allowSeconds(secondsPerPacket);
    if (av_seek_frame(input_->context(), facts_.index, time, AVSEEK_FLAG_BACKWARD) < 0) {
        seekToBegin();
    }
    forget();
}

// A search for the beginning of a stream by time ends behind its first key picture.
void PictureFinder::seekToBegin()
{
    const bool isStream = input_->isContainer("mpegts") || input_->isContainer("mpeg");
    input_->allowSeconds(secondsPerPacket);
    if (!isStream || av_seek_frame(input_->context(), -1, 0, AVSEEK_FLAG_BYTE) < 0) {
        av_seek_frame(input_->context(), facts_.index, INT64_MIN / 4, 0);
    }
    forget();
}

void PictureFinder::forget()
{
    avcodec_flush_buffers(codec_.get());
    held_.clear();
    fed_ = false;
    ended_ = false;
}

// Where there is no index a search by time ends in the middle of a group: then it begins further ahead.
void PictureFinder::seekBefore(double seconds)
{
    constexpr double longestWay = 100;
    constexpr double growth = 4;
    for (double ahead = input_->isMovie() ? 0.0 : 1.0; !cancelled_; ahead = std::max(1.0, ahead * growth)) {
        const bool fromStart = ahead > longestWay || seconds - ahead <= 0;
        fromStart && !input_->isMovie() ? seekToBegin() : seekTo(std::max(0.0, seconds - ahead));
        if ((decodeNext() && held_.front().start <= seconds + slack) || fromStart) {
            return;
        }
    }
}

std::optional<FoundPicture> PictureFinder::at(double seconds)
{
    constexpr double nearby = 2;
    const double wanted = std::max(0.0, seconds);
    const bool follows =
        !held_.empty() && wanted + slack >= held_.front().start && wanted < held_.back().start + nearby;
    if (!follows) {
        seekBefore(wanted);
    }
    for (;;) {
        if (const auto found = amongHeld(wanted)) {
            return found;
        }
        const bool more = decodeNext();
        // Before the first picture of the clip there is none.
        if (!held_.empty() && held_.front().start > wanted + slack && held_.size() > 1) {
            return FoundPicture{held_[0].frame.get(), held_[0].start, held_[1].start};
        }
        if (!more && !(ended_ && !held_.empty())) {
            return std::nullopt;
        }
        if (ended_ && held_.front().start > wanted + slack) {
            return FoundPicture{held_[0].frame.get(), held_[0].start, held_[0].start};
        }
    }
}

} // namespace tavrix::media
