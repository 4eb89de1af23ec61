#include "tools/movencoder/moviereader.h"

#include <algorithm>
#include <string_view>

namespace tavrix::movencoder
{

namespace
{

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

std::unique_ptr<MovieReader> MovieReader::open(const std::string& path, std::string& error)
{
    std::unique_ptr<MovieReader> reader(new MovieReader);
    reader->packet_.reset(av_packet_alloc());
    reader->picture_.reset(av_frame_alloc());
    if (!reader->packet_ || !reader->picture_) {
        error = "out of memory";
        return nullptr;
    }
    if (!reader->openContainer(path, error) || !reader->chooseStreams(error) || !reader->openDecoder(error)) {
        return nullptr;
    }
    return reader;
}

MovieReader::~MovieReader()
{
    avformat_close_input(&container_);
}

bool MovieReader::openContainer(const std::string& path, std::string& error)
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
        error = avErrorText(result);
    }
    return result >= 0;
}

bool MovieReader::chooseStreams(std::string& error)
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
        error = "there is no video in it";
        return false;
    }
    if (isMovie()) {
        indexedPackets_ = avformat_index_get_entries_count(video_);
    }
    return true;
}

bool MovieReader::openDecoder(std::string& error)
{
    const AVCodecParameters& parameters = *video_->codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        error = std::string("there is no decoder for its video (") + avcodec_get_name(parameters.codec_id) + ")";
        return false;
    }
    decoder_.reset(avcodec_alloc_context3(codec));
    if (!decoder_) {
        error = "out of memory";
        return false;
    }
    int result = avcodec_parameters_to_context(decoder_.get(), &parameters);
    decoder_->pkt_timebase = video_->time_base;
    decoder_->thread_count = 0;
    if (result >= 0) {
        result = avcodec_open2(decoder_.get(), codec, nullptr);
    }
    if (result < 0) {
        error = "its video decoder does not start: " + avErrorText(result);
    }
    return result >= 0;
}

// Whether decoding can go on after this error.
bool MovieReader::forgive(int result, std::string& error)
{
    if (result == AVERROR_INVALIDDATA && pictures_ == 0) {
        return true;
    }
    error = "its video cannot be decoded after picture " + std::to_string(pictures_) + ": " + avErrorText(result);
    return false;
}

bool MovieReader::complete(std::string& error) const
{
    if (videoPackets_ < indexedPackets_) {
        error = "it ends early: " + std::to_string(videoPackets_) + " of " + std::to_string(indexedPackets_) +
                " pictures can be read";
        return false;
    }
    if (pictures_ == 0) {
        error = "none of its pictures can be decoded";
    }
    return pictures_ > 0;
}

bool MovieReader::readPacket(std::string& error)
{
    av_packet_unref(packet_.get());
    const int result = av_read_frame(container_, packet_.get());
    if (result == AVERROR_EOF) {
        flushing_ = true;
        return true;
    }
    if (result < 0) {
        error = "it cannot be read to its end: " + avErrorText(result);
        return false;
    }
    if ((packet_->flags & AV_PKT_FLAG_CORRUPT) != 0 && indexedPackets_ > 0) {
        error = "it is cut off or damaged";
        return false;
    }
    return true;
}

bool MovieReader::sendPacket(std::string& error)
{
    if (!flushing_) {
        ++videoPackets_;
    }
    const int result = avcodec_send_packet(decoder_.get(), flushing_ ? nullptr : packet_.get());
    return result >= 0 || forgive(result, error);
}

// Where a movie's edits join several stretches, the packets at the borders reach beyond them. What overlaps goes, so
// that the rest keeps its time; what the edits hide at the start stays, for decoders that have to warm up.
bool MovieReader::keepsSound()
{
    AVPacket& packet = *packet_;
    const auto stream = std::find_if(sounds_.begin(), sounds_.end(),
                                     [&packet](const AVStream* sound) { return sound->index == packet.stream_index; });
    if (stream == sounds_.end()) {
        return false;
    }
    if (!isMovie() || packet.dts == AV_NOPTS_VALUE || packet.pts == AV_NOPTS_VALUE) {
        return true;
    }
    SoundPlace& place = soundPlaces_[packet.stream_index];
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

MovieReader::Item MovieReader::next(std::string& error)
{
    for (;;) {
        const int result = avcodec_receive_frame(decoder_.get(), picture_.get());
        if (result >= 0) {
            const bool damaged = picture_->decode_error_flags != 0 || (picture_->flags & AV_FRAME_FLAG_CORRUPT) != 0;
            if (!damaged) {
                ++pictures_;
                return Item::Picture;
            }
            if (!forgive(AVERROR_INVALIDDATA, error)) {
                return Item::Failure;
            }
            continue;
        }
        if (result == AVERROR_EOF) {
            return complete(error) ? Item::End : Item::Failure;
        }
        if (result != AVERROR(EAGAIN)) {
            if (!forgive(result, error)) {
                return Item::Failure;
            }
            continue;
        }
        if (!readPacket(error)) {
            return Item::Failure;
        }
        const bool video = flushing_ || packet_->stream_index == video_->index;
        if (!video && keepsSound()) {
            return Item::Sound;
        }
        if (video && !sendPacket(error)) {
            return Item::Failure;
        }
    }
}

FramePtr MovieReader::takePicture()
{
    FramePtr taken(av_frame_alloc());
    if (taken) {
        av_frame_move_ref(taken.get(), picture_.get());
    }
    return taken;
}

AVRational MovieReader::pixelAspect(AVFrame& picture) const
{
    return av_guess_sample_aspect_ratio(container_, video_, &picture);
}

std::int64_t MovieReader::durationOf(const AVFrame& picture) const
{
    if (picture.pkt_duration > 0) {
        return picture.pkt_duration;
    }
    const AVRational rate = av_guess_frame_rate(container_, video_, nullptr);
    if (rate.num <= 0 || rate.den <= 0) {
        return 1;
    }
    return std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(rate), video_->time_base));
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
