// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/moviereader.h"

#include "tools/movencoder/piecetimes.h"

#include <algorithm>
#include <string_view>

namespace tavrix::movencoder
{

namespace
{

// A container that cannot deliver so many packets on end has nothing more to give.
constexpr int mostReadErrors = 1000;

// Takes samples off the front of a packet of uncompressed sound; false when none are left.
bool trimFront(AVPacket& packet, const AVStream& stream, std::int64_t samples)
{
    const std::int64_t bytes = samples * stream.codecpar->block_align;
    if (bytes >= packet.size) {
        return false;
    }
    packet.data += bytes;
    packet.size -= static_cast<int>(bytes);
    packet.pts += samples;
    packet.dts += samples;
    packet.duration = std::max<std::int64_t>(0, packet.duration - samples);
    return true;
}

} // namespace

Result<std::unique_ptr<MovieReader>> MovieReader::open(const std::string& path)
{
    std::unique_ptr<MovieReader> reader(new MovieReader);
    reader->packet_.reset(av_packet_alloc());
    if (!reader->packet_) {
        return Failure{"out of memory"};
    }
    if (auto opened = reader->openContainer(path); !opened) {
        return Failure{opened.reason()};
    }
    if (auto chosen = reader->chooseStreams(); !chosen) {
        return Failure{chosen.reason()};
    }
    auto decoder = PictureDecoder::open(*reader->video_);
    if (!decoder) {
        return Failure{decoder.reason()};
    }
    reader->decoder_ = *std::move(decoder);
    if (reader->isMovie()) {
        reader->pieceTimes_ = pieceTimes(path, *reader->video_);
    }
    return reader;
}

MovieReader::~MovieReader()
{
    avformat_close_input(&container_);
}

Result<void> MovieReader::openContainer(const std::string& path)
{
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    const std::string address = "file:" + path;
    int result = avformat_open_input(&container_, address.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (result >= 0) {
        result = avformat_find_stream_info(container_, nullptr);
    }
    if (result < 0) {
        return Failure{avErrorText(result)};
    }
    clockMayJump_ = (container_->iformat->flags & AVFMT_TS_DISCONT) != 0;
    return {};
}

Result<void> MovieReader::chooseStreams()
{
    for (unsigned i = 0; i < container_->nb_streams; ++i) {
        AVStream* stream = container_->streams[i];
        const AVMediaType type = stream->codecpar->codec_type;
        const bool still = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (type == AVMEDIA_TYPE_VIDEO && !still && video_ == nullptr) {
            video_ = stream;
        } else if (type == AVMEDIA_TYPE_AUDIO) {
            sounds_.push_back(stream);
        } else {
            stream->discard = AVDISCARD_ALL;
        }
    }
    if (video_ == nullptr) {
        return Failure{"there is no video in it"};
    }
    return {};
}

// False at the end of what can be read. A packet that cannot be read is passed over: others may follow it.
bool MovieReader::readPacket()
{
    for (int errors = 0; errors < mostReadErrors; ++errors) {
        av_packet_unref(packet_.get());
        const int result = av_read_frame(container_, packet_.get());
        if (result >= 0) {
            return true;
        }
        if (result != AVERROR_INVALIDDATA) {
            break;
        }
    }
    return false;
}

void MovieReader::moveClock()
{
    if (!clockMayJump_) {
        return;
    }
    AVPacket& packet = *packet_;
    const AVRational base = container_->streams[packet.stream_index]->time_base;
    const std::int64_t offset =
        packet.dts == AV_NOPTS_VALUE
            ? clockJumps_.offsetOf(packet.stream_index)
            : clockJumps_.offsetOf(packet.stream_index, av_rescale_q(packet.dts, base, AV_TIME_BASE_Q),
                                   av_rescale_q(packet.duration, base, AV_TIME_BASE_Q));
    const std::int64_t ticks = av_rescale_q(offset, AV_TIME_BASE_Q, base);
    packet.pts += packet.pts == AV_NOPTS_VALUE ? 0 : ticks;
    packet.dts += packet.dts == AV_NOPTS_VALUE ? 0 : ticks;
}

// Where a movie's edits join several stretches, the packets at the borders reach beyond them. What overlaps goes, so
// that the rest keeps its time; what the edits hide at the start stays, for decoders that have to warm up. A clock that
// steps back a little makes packets overlap as well: those that come too late are left out.
bool MovieReader::keepsSound()
{
    AVPacket& packet = *packet_;
    const auto stream = std::find_if(sounds_.begin(), sounds_.end(),
                                     [&packet](const AVStream* sound) { return sound->index == packet.stream_index; });
    if (stream == sounds_.end()) {
        return false;
    }
    if (packet.dts == AV_NOPTS_VALUE || packet.pts == AV_NOPTS_VALUE) {
        return true;
    }
    SoundPlace& place = soundPlaces_[packet.stream_index];
    if (!isMovie()) {
        const bool inOrder = place.last == AV_NOPTS_VALUE || packet.dts > place.last;
        place.last = inOrder ? packet.dts : place.last;
        return inOrder;
    }
    const bool hidden = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
    if (hidden && place.heard) {
        return false;
    }
    place.heard = place.heard || !hidden;
    const AVCodecParameters& parameters = *(*stream)->codecpar;
    const bool countsSamples = av_get_exact_bits_per_sample(parameters.codec_id) > 0 && parameters.block_align > 0 &&
                               av_cmp_q((*stream)->time_base, {1, parameters.sample_rate}) == 0;
    const bool overlaps = place.last != AV_NOPTS_VALUE && packet.dts < place.end;
    if (overlaps && countsSamples && !trimFront(packet, **stream, place.end - packet.dts)) {
        return false;
    }
    if (overlaps && packet.dts <= place.last) {
        return false;
    }
    place.last = packet.dts;
    place.end = packet.dts + packet.duration;
    return true;
}

Result<MovieReader::Item> MovieReader::next()
{
    for (;;) {
        const auto answer = decoder_->next();
        if (!answer) {
            return Failure{answer.reason()};
        }
        if (*answer == PictureDecoder::Answer::Picture) {
            return Item::Picture;
        }
        if (*answer == PictureDecoder::Answer::End) {
            if (pictures_ == 0) {
                return Failure{videoPackets_ == 0 ? "none of its pictures can be read"
                                                  : "none of its pictures can be decoded"};
            }
            return Item::End;
        }
        const bool read = readPacket();
        if (read) {
            moveClock();
        }
        if (read && packet_->stream_index != video_->index) {
            if (keepsSound()) {
                return Item::Sound;
            }
            continue;
        }
        videoPackets_ += read ? 1 : 0;
        if (auto sent = decoder_->send(read ? packet_.get() : nullptr); !sent) {
            return Failure{sent.reason()};
        }
    }
}

DecodedPicture MovieReader::takePicture()
{
    DecodedPicture picture = std::move(decoder_->picture());
    decoder_->drop();
    if (const auto number = static_cast<std::size_t>(pictures_); number < pieceTimes_.size()) {
        picture.time = pieceTimes_[number];
    }
    ++pictures_;
    lost_ += picture.frame ? 0 : 1;
    picture.duration = pictureDuration(picture.duration);
    return picture;
}

AVRational MovieReader::pixelAspect(AVFrame& picture) const
{
    return av_guess_sample_aspect_ratio(container_, video_, &picture);
}

AVRational MovieReader::rate() const
{
    const AVRational rate = av_guess_frame_rate(container_, video_, nullptr);
    return rate.num > 0 && rate.den > 0 ? rate : AVRational{0, 1};
}

std::int64_t MovieReader::pictureDuration(std::int64_t told) const
{
    if (told > 0) {
        return told;
    }
    const AVRational pictures = rate();
    if (pictures.num == 0) {
        return 1;
    }
    return std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(pictures), video_->time_base));
}

std::int64_t MovieReader::lastDuration(std::int64_t time, std::int64_t duration) const
{
    if (!isMovie() || video_->start_time == AV_NOPTS_VALUE || video_->duration <= 0) {
        return duration;
    }
    const std::int64_t left = video_->start_time + video_->duration - time;
    return left > 0 && left <= 3 * duration ? left : duration;
}

bool MovieReader::isMovie() const
{
    return std::string_view(container_->iformat->name).find("mov") != std::string_view::npos;
}

// A movie has a time line of its own that starts at 0; other containers carry on a recorder's clock.
std::int64_t MovieReader::start() const
{
    return isMovie() || container_->start_time == AV_NOPTS_VALUE ? 0 : container_->start_time;
}

std::int64_t MovieReader::duration() const
{
    return container_->duration == AV_NOPTS_VALUE ? 0 : std::max<std::int64_t>(0, container_->duration);
}

} // namespace tavrix::movencoder
