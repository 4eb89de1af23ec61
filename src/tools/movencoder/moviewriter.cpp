// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/moviewriter.h"

#include "sys/errortext.h"
#include "sys/transfer.h"
#include "tools/movencoder/moviemetadata.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/timecode.h>
}

namespace tavrix::movencoder
{

int MovieWriter::writeBytes(void* self, WrittenBytes bytes, int count)
{
    auto* writer = static_cast<MovieWriter*>(self);
    if (writeAll(writer->fd_, {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)})) {
        return count;
    }
    if (writer->writeError_ == 0) {
        writer->writeError_ = errno;
    }
    return AVERROR(writer->writeError_);
}

std::int64_t MovieWriter::seekTo(void* self, std::int64_t offset, int whence)
{
    const int fd = static_cast<MovieWriter*>(self)->fd_;
    if ((whence & AVSEEK_SIZE) != 0) {
        struct stat facts {
        };
        return fstat(fd, &facts) == 0 ? facts.st_size : AVERROR(errno);
    }
    const off_t position = lseek(fd, offset, whence & ~AVSEEK_FORCE);
    return position >= 0 ? position : AVERROR(errno);
}

Result<std::unique_ptr<MovieWriter>> MovieWriter::open(int fd, const MovieReader& source, const PictureEncoder& encoder,
                                                       const PictureFacts& facts)
{
    std::unique_ptr<MovieWriter> writer(new MovieWriter(fd, source));
    Result<void> done = writer->openContainer();
    if (done) {
        done = writer->addVideo(encoder, facts);
    }
    for (const AVStream* sound : source.sounds()) {
        if (done) {
            done = writer->addSound(*sound);
        }
    }
    if (done) {
        done = writer->writeHeader();
    }
    if (!done) {
        return Failure{done.reason()};
    }
    return writer;
}

MovieWriter::~MovieWriter()
{
    if (container_ == nullptr) {
        return;
    }
    if (container_->pb != nullptr) {
        av_freep(&container_->pb->buffer);
    }
    avio_context_free(&container_->pb);
    avformat_free_context(container_);
}

Result<void> MovieWriter::openContainer()
{
    constexpr std::size_t bufferSize = std::size_t{1} << 20;
    packet_.reset(av_packet_alloc());
    int result = avformat_alloc_output_context2(&container_, nullptr, "mov", nullptr);
    if (result >= 0) {
        auto* buffer = static_cast<std::uint8_t*>(av_malloc(bufferSize));
        if (buffer != nullptr) {
            container_->pb = avio_alloc_context(buffer, bufferSize, 1, this, nullptr, writeBytes, seekTo);
        }
        if (container_->pb == nullptr) {
            av_free(buffer);
        }
    }
    if (result >= 0 && (container_->pb == nullptr || !packet_)) {
        result = AVERROR(ENOMEM);
    }
    if (result < 0) {
        return Failure{avErrorText(result)};
    }
    copyMetadata(container_->metadata, source_.container()->metadata);
    targetOf_.assign(source_.container()->nb_streams, -1);
    return {};
}

Result<void> MovieWriter::addVideo(const PictureEncoder& encoder, const PictureFacts& facts)
{
    const AVStream& from = *source_.video();
    AVStream* stream = avformat_new_stream(container_, nullptr);
    if (stream == nullptr) {
        return Failure{"out of memory"};
    }
    AVCodecParameters& parameters = *stream->codecpar;
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    parameters.format = encoder.pixelFormat();
    parameters.width = facts.fit.width;
    parameters.height = facts.fit.height;
    if (auto described = encoder.describe(parameters); !described) {
        return described;
    }
    parameters.color_primaries = facts.colours.primaries;
    parameters.color_trc = facts.colours.transfer;
    parameters.color_space = facts.colours.matrix;
    parameters.color_range = AVCOL_RANGE_MPEG;
    parameters.chroma_location = facts.chromaLocation;
    if (facts.fields.interlaced) {
        parameters.field_order = facts.fields.topFirst ? AV_FIELD_TT : AV_FIELD_BB;
    } else {
        parameters.field_order = AV_FIELD_PROGRESSIVE;
    }
    parameters.sample_aspect_ratio = {facts.fit.pixelAspect.num, facts.fit.pixelAspect.den};
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    videoBase_ = facts.timeBase;
    videoIndex_ = stream->index;
    stream->time_base = facts.timeBase;
    stream->avg_frame_rate = from.avg_frame_rate;
    stream->r_frame_rate = from.r_frame_rate;
    stream->disposition = from.disposition;
    copyMetadata(stream->metadata, from.metadata);
    av_dict_set(&stream->metadata, "encoder", encoder.name().c_str(), 0);
    copyTimecode(*stream);
    return copyRotation(*stream, facts.fit);
}

// The muxer refuses the whole movie for a time code that does not go with the frame rate; the picture matters more.
void MovieWriter::copyTimecode(AVStream& stream) const
{
    const AVDictionaryEntry* entry = av_dict_get(stream.metadata, "timecode", nullptr, 0);
    if (entry == nullptr) {
        entry = av_dict_get(container_->metadata, "timecode", nullptr, 0);
    }
    if (entry == nullptr) {
        return;
    }
    AVTimecode timecode;
    const std::string text = entry->value;
    const bool good = av_timecode_init_from_string(&timecode, stream.avg_frame_rate, text.c_str(), nullptr) >= 0;
    av_dict_set(&stream.metadata, "timecode", good ? text.c_str() : nullptr, 0);
    av_dict_set(&container_->metadata, "timecode", nullptr, 0);
}

Result<void> MovieWriter::copyRotation(AVStream& stream, const Fit& fit) const
{
    const AVStream& from = *source_.video();
    auto matrix = displayMatrixOf(from);
    if (!matrix || from.codecpar->width <= 0 || from.codecpar->height <= 0) {
        return {};
    }
    // The offsets of a turned picture are its old sides, so they follow the new ones.
    const auto follow = [&](std::int32_t& offset, bool alongWidth) {
        const std::int64_t now = alongWidth ? fit.width : fit.height;
        const std::int64_t then = alongWidth ? from.codecpar->width : from.codecpar->height;
        offset = static_cast<std::int32_t>(offset * now / then);
    };
    follow((*matrix)[6], (*matrix)[0] != 0);
    follow((*matrix)[7], (*matrix)[4] == 0);
    if (!setDisplayMatrix(stream, *matrix)) {
        return Failure{"out of memory"};
    }
    return {};
}

Result<void> MovieWriter::addSound(const AVStream& from)
{
    AVStream* stream = avformat_new_stream(container_, nullptr);
    if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, from.codecpar) < 0) {
        return Failure{"out of memory"};
    }
    // A tag is kept only where QuickTime knows it for this codec; otherwise the muxer chooses one.
    const AVCodecTag* const tags[] = {avformat_get_mov_audio_tags(), nullptr};
    if (av_codec_get_id(tags, stream->codecpar->codec_tag) != stream->codecpar->codec_id) {
        stream->codecpar->codec_tag = 0;
    }
    stream->time_base = from.time_base;
    stream->disposition = from.disposition;
    copyMetadata(stream->metadata, from.metadata);
    targetOf_[static_cast<std::size_t>(from.index)] = stream->index;
    return {};
}

Result<void> MovieWriter::writeHeader()
{
    // With the time scale of the pictures no time is rounded on its way.
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "video_track_timescale", videoBase_.den, 0);
    av_dict_set_int(&options, "movie_timescale", videoBase_.den, 0);
    const bool keys = hasQuickTimeKeys(container_->metadata);
    av_dict_set(&options, "movflags", keys ? "+write_colr+use_metadata_tags" : "+write_colr", 0);
    const int result = avformat_write_header(container_, &options);
    av_dict_free(&options);
    return resultOf(result);
}

// The file's own error comes before what the library makes of it.
Result<void> MovieWriter::resultOf(int result) const
{
    if (writeError_ != 0) {
        return Failure{errorText(writeError_)};
    }
    if (result < 0 || container_->pb->error < 0) {
        return Failure{avErrorText(result < 0 ? result : container_->pb->error)};
    }
    return {};
}

Result<void> MovieWriter::write(AVPacket& packet, int stream, AVRational base)
{
    const std::int64_t start = av_rescale_q(source_.start(), AV_TIME_BASE_Q, base);
    packet.pts -= packet.pts == AV_NOPTS_VALUE ? 0 : start;
    packet.dts -= packet.dts == AV_NOPTS_VALUE ? 0 : start;
    av_packet_rescale_ts(&packet, base, container_->streams[stream]->time_base);
    packet.stream_index = stream;
    packet.pos = -1;
    return resultOf(av_interleaved_write_frame(container_, &packet));
}

Result<void> MovieWriter::writePicture(const CodedPicture& picture)
{
    using Bytes = std::shared_ptr<const std::vector<std::uint8_t>>;
    const auto release = [](void* kept, std::uint8_t*) {
        delete static_cast<Bytes*>(kept);
    };
    auto kept = std::make_unique<Bytes>(picture.bytes);
    // The packet is read-only, so the bytes stay as they are.
    auto* bytes = const_cast<std::uint8_t*>(picture.bytes->data());
    packet_->buf = av_buffer_create(bytes, picture.bytes->size(), release, kept.get(), AV_BUFFER_FLAG_READONLY);
    if (packet_->buf == nullptr) {
        return Failure{"out of memory"};
    }
    static_cast<void>(kept.release()); // the buffer's now
    packet_->data = bytes;
    packet_->size = static_cast<int>(picture.bytes->size());
    packet_->pts = picture.time;
    packet_->dts = picture.time;
    packet_->duration = picture.duration;
    packet_->flags |= AV_PKT_FLAG_KEY;
    return write(*packet_, videoIndex_, videoBase_);
}

Result<void> MovieWriter::writeSound(AVPacket& packet)
{
    const auto source = static_cast<std::size_t>(packet.stream_index);
    return write(packet, targetOf_[source], source_.container()->streams[source]->time_base);
}

Result<void> MovieWriter::finish()
{
    const int result = av_write_trailer(container_);
    avio_flush(container_->pb);
    return resultOf(result);
}

} // namespace tavrix::movencoder
