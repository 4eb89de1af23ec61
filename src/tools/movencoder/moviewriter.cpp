#include "tools/movencoder/moviewriter.h"

#include "sys/errortext.h"
#include "sys/transfer.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/timecode.h>
}

namespace tavrix::movencoder
{

namespace
{

// Keys that describe the source's file and codec and not what is in it.
void copyMetadata(AVDictionary*& to, const AVDictionary* from)
{
    av_dict_copy(&to, from, 0);
    for (const char* key : {"major_brand", "minor_version", "compatible_brands", "encoder", "vendor_id"}) {
        av_dict_set(&to, key, nullptr, 0);
    }
}

} // namespace

int MovieWriter::writeBytes(void* self, std::uint8_t* bytes, int count)
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

std::unique_ptr<MovieWriter> MovieWriter::open(int fd, const MovieReader& source, Format format,
                                               const PictureEncoder& encoder, const PictureFacts& facts,
                                               std::string& error)
{
    std::unique_ptr<MovieWriter> writer(new MovieWriter(fd, source));
    if (!writer->openContainer(error) || !writer->addVideo(format, encoder, facts, error)) {
        return nullptr;
    }
    for (const AVStream* sound : source.sounds()) {
        if (!writer->addSound(*sound, error)) {
            return nullptr;
        }
    }
    return writer->writeHeader(error) ? std::move(writer) : nullptr;
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

bool MovieWriter::openContainer(std::string& error)
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
        error = avErrorText(result);
        return false;
    }
    copyMetadata(container_->metadata, source_.container()->metadata);
    targetOf_.assign(source_.container()->nb_streams, -1);
    return true;
}

bool MovieWriter::addVideo(Format format, const PictureEncoder& encoder, const PictureFacts& facts, std::string& error)
{
    const AVStream& from = *source_.video();
    AVStream* stream = avformat_new_stream(container_, nullptr);
    if (stream == nullptr) {
        error = "out of memory";
        return false;
    }
    AVCodecParameters& parameters = *stream->codecpar;
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    parameters.format = encoder.pixelFormat();
    parameters.width = facts.fit.width;
    parameters.height = facts.fit.height;
    if (!encoder.describe(parameters, error)) {
        return false;
    }
    parameters.color_primaries = facts.primaries;
    parameters.color_trc = facts.transfer;
    parameters.color_space = facts.matrix;
    parameters.color_range = AVCOL_RANGE_MPEG;
    parameters.chroma_location = facts.chromaLocation;
    if (facts.interlaced) {
        parameters.field_order = facts.topFieldFirst ? AV_FIELD_TT : AV_FIELD_BB;
    } else {
        parameters.field_order = AV_FIELD_PROGRESSIVE;
    }
    parameters.sample_aspect_ratio = {facts.fit.pixelAspect.num, facts.fit.pixelAspect.den};
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    stream->time_base = from.time_base;
    stream->avg_frame_rate = from.avg_frame_rate;
    stream->r_frame_rate = from.r_frame_rate;
    stream->disposition = from.disposition;
    copyMetadata(stream->metadata, from.metadata);
    av_dict_set(&stream->metadata, "encoder", formatName(format), 0);
    copyTimecode(*stream);
    copyRotation(*stream, facts.fit);
    targetOf_[static_cast<std::size_t>(from.index)] = stream->index;
    return true;
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

void MovieWriter::copyRotation(AVStream& stream, const Fit& fit) const
{
    const AVStream& from = *source_.video();
    std::size_t size = 0;
    const std::uint8_t* data = av_stream_get_side_data(&from, AV_PKT_DATA_DISPLAYMATRIX, &size);
    constexpr std::size_t matrixSize = 9 * sizeof(std::int32_t);
    if (data == nullptr || size < matrixSize || from.codecpar->width <= 0 || from.codecpar->height <= 0) {
        return;
    }
    std::array<std::int32_t, 9> matrix;
    std::memcpy(matrix.data(), data, matrixSize);
    // The offsets of a turned picture are its old sides, so they follow the new ones.
    const auto follow = [&](std::int32_t& offset, bool alongWidth) {
        const std::int64_t now = alongWidth ? fit.width : fit.height;
        const std::int64_t then = alongWidth ? from.codecpar->width : from.codecpar->height;
        offset = static_cast<std::int32_t>(offset * now / then);
    };
    follow(matrix[6], matrix[0] != 0);
    follow(matrix[7], matrix[4] == 0);
    std::uint8_t* copy = av_stream_new_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, matrixSize);
    if (copy != nullptr) {
        std::memcpy(copy, matrix.data(), matrixSize);
    }
}

bool MovieWriter::addSound(const AVStream& from, std::string& error)
{
    AVStream* stream = avformat_new_stream(container_, nullptr);
    if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, from.codecpar) < 0) {
        error = "out of memory";
        return false;
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
    return true;
}

bool MovieWriter::writeHeader(std::string& error)
{
    // With the time scales of the source no time is rounded on its way.
    const AVRational timeBase = source_.video()->time_base;
    AVDictionary* options = nullptr;
    if (timeBase.num == 1) {
        av_dict_set_int(&options, "video_track_timescale", timeBase.den, 0);
        av_dict_set_int(&options, "movie_timescale", timeBase.den, 0);
    }
    av_dict_set(&options, "movflags", "+write_colr", 0);
    const int result = avformat_write_header(container_, &options);
    av_dict_free(&options);
    return !failed(result, error);
}

bool MovieWriter::failed(int result, std::string& error) const
{
    if (writeError_ != 0) {
        error = errorText(writeError_);
    } else if (result < 0) {
        error = avErrorText(result);
    } else if (container_->pb->error < 0) {
        error = avErrorText(container_->pb->error);
    } else {
        return false;
    }
    return true;
}

bool MovieWriter::write(AVPacket& packet, const AVStream& from, std::string& error)
{
    const AVStream& to = *container_->streams[targetOf_[static_cast<std::size_t>(from.index)]];
    const std::int64_t start = av_rescale_q(source_.start(), AV_TIME_BASE_Q, from.time_base);
    if (packet.pts != AV_NOPTS_VALUE) {
        packet.pts -= start;
    }
    if (packet.dts != AV_NOPTS_VALUE) {
        packet.dts -= start;
    }
    av_packet_rescale_ts(&packet, from.time_base, to.time_base);
    packet.stream_index = to.index;
    packet.pos = -1;
    return !failed(av_interleaved_write_frame(container_, &packet), error);
}

bool MovieWriter::writePicture(const CodedPicture& picture, std::string& error)
{
    const int result = av_new_packet(packet_.get(), static_cast<int>(picture.bytes.size()));
    if (result < 0) {
        error = avErrorText(result);
        return false;
    }
    std::memcpy(packet_->data, picture.bytes.data(), picture.bytes.size());
    packet_->pts = picture.time;
    packet_->dts = picture.time;
    packet_->duration = picture.duration;
    packet_->flags |= AV_PKT_FLAG_KEY;
    return write(*packet_, *source_.video(), error);
}

bool MovieWriter::writeSound(AVPacket& packet, std::string& error)
{
    return write(packet, *source_.container()->streams[packet.stream_index], error);
}

bool MovieWriter::finish(std::string& error)
{
    const int result = av_write_trailer(container_);
    avio_flush(container_->pb);
    return !failed(result, error);
}

} // namespace tavrix::movencoder
