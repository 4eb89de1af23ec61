// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/waveexport.h"

#include "base/files/posixfile.h"
#include "base/text/paths.h"
#include "media/soundsink.h"
#include "quicktime/av/avinput.h"
#include "quicktime/av/moviefilewriter.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr int openSeconds = 20;
constexpr qint64 waveHeaderSize = 44;

struct DecoderDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

QByteArray waveHeader(int sampleRate, int channels, qint64 dataBytes)
{
    QByteArray header;
    const auto number = [&header](auto value) {
        const auto stored = qToLittleEndian(value);
        header.append(reinterpret_cast<const char*>(&stored), sizeof stored);
    };
    const auto blockBytes = static_cast<quint16>(channels * 2);
    header.append("RIFF");
    number(static_cast<quint32>(dataBytes + waveHeaderSize - 8));
    header.append("WAVEfmt ");
    number(quint32(16));
    number(quint16(1));
    number(static_cast<quint16>(channels));
    number(static_cast<quint32>(sampleRate));
    number(static_cast<quint32>(sampleRate) * blockBytes);
    number(blockBytes);
    number(quint16(16));
    header.append("data");
    number(static_cast<quint32>(dataBytes));
    return header;
}

std::int16_t fromFloat(double value)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(value * 32768.0, -32768.0, 32767.0)));
}

std::int16_t sampleAt(const std::uint8_t* data, AVSampleFormat packed, std::size_t index)
{
    switch (packed) {
    case AV_SAMPLE_FMT_U8:
        return static_cast<std::int16_t>((data[index] - 128) * 256);
    case AV_SAMPLE_FMT_S16:
        return reinterpret_cast<const std::int16_t*>(data)[index];
    case AV_SAMPLE_FMT_S32:
        return static_cast<std::int16_t>(reinterpret_cast<const std::int32_t*>(data)[index] >> 16);
    case AV_SAMPLE_FMT_S64:
        return static_cast<std::int16_t>(reinterpret_cast<const std::int64_t*>(data)[index] >> 48);
    case AV_SAMPLE_FMT_FLT:
        return fromFloat(static_cast<double>(reinterpret_cast<const float*>(data)[index]));
    case AV_SAMPLE_FMT_DBL:
        return fromFloat(reinterpret_cast<const double*>(data)[index]);
    default:
        return 0;
    }
}

std::vector<std::int16_t> interleaved(const AVFrame& frame, int channels)
{
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const AVSampleFormat packed = av_get_packed_sample_fmt(format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const auto count = static_cast<std::size_t>(channels);
    std::vector<std::int16_t> samples;
    samples.reserve(static_cast<std::size_t>(frame.nb_samples) * count);
    for (std::size_t index = 0; index < static_cast<std::size_t>(frame.nb_samples); ++index) {
        for (std::size_t channel = 0; channel < count; ++channel) {
            const std::uint8_t* plane = planar ? frame.extended_data[channel] : frame.extended_data[0];
            samples.push_back(sampleAt(plane, packed, planar ? index : index * count + channel));
        }
    }
    return samples;
}

class WaveExport
{
public:
    bool run(const QString& sourcePath, const QString& destinationPath, const EditTimeline& timeline);
    [[nodiscard]] QString reason() const { return reason_; }

private:
    bool openDecoder(const QString& sourcePath);
    bool decodeAll(SoundSink& sink);
    // Hands on what the decoder has ready.
    bool takeFrames(SoundSink& sink);
    bool takeFrame(SoundSink& sink);
    bool writeSamples(std::span<const std::int16_t> samples);
    bool failed(const QString& reason);
    bool write(const QByteArray& bytes);
    bool failed(int error) { return failed(avErrorText(error)); }

    std::unique_ptr<AvInput> input_;
    std::unique_ptr<AVCodecContext, DecoderDeleter> decoder_;
    std::unique_ptr<AVFrame, FrameDeleter> frame_;
    AVStream* stream_ = nullptr;
    std::int64_t origin_ = 0;
    int sampleRate_ = 0;
    int channels_ = 0;
    std::int64_t expected_ = std::numeric_limits<std::int64_t>::min(); // frame of the source that follows
    std::optional<SafeOutput> file_;
    qint64 dataBytes_ = 0;
    QString reason_;
};

bool WaveExport::failed(const QString& reason)
{
    reason_ = reason;
    return false;
}

bool WaveExport::write(const QByteArray& bytes)
{
    return writeAll(file_->fd(), viewOf(bytes)) || failed(systemErrorText());
}

bool WaveExport::openDecoder(const QString& sourcePath)
{
    input_ = AvInput::open(sourcePath, openSeconds);
    if (input_ == nullptr) {
        return failed(QStringLiteral("the source cannot be opened"));
    }
    input_->allowSeconds(0);
    AVFormatContext* context = input_->context();
    for (unsigned int index = 0; index < context->nb_streams; ++index) {
        AVStream* stream = context->streams[index];
        if (stream_ == nullptr && stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            stream_ = stream;
        } else {
            stream->discard = AVDISCARD_ALL;
        }
    }
    const AVCodec* codec = stream_ == nullptr ? nullptr : avcodec_find_decoder(stream_->codecpar->codec_id);
    if (codec == nullptr) {
        return failed(QStringLiteral("no sound that can be decoded"));
    }
    decoder_.reset(avcodec_alloc_context3(codec));
    frame_.reset(av_frame_alloc());
    if (decoder_ == nullptr || frame_ == nullptr) {
        return failed(AVERROR(ENOMEM));
    }
    int error = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
    decoder_->pkt_timebase = stream_->time_base;
    if (error >= 0) {
        error = avcodec_open2(decoder_.get(), codec, nullptr);
    }
    if (error < 0) {
        return failed(error);
    }
    origin_ = fileFacts(*input_).origin;
    sampleRate_ = stream_->codecpar->sample_rate;
    channels_ = stream_->codecpar->ch_layout.nb_channels;
    if (sampleRate_ <= 0 || channels_ <= 0) {
        return failed(QStringLiteral("rate or channels of the sound are not known"));
    }
    return true;
}

bool WaveExport::writeSamples(std::span<const std::int16_t> samples)
{
    std::vector<std::int16_t> stored(samples.begin(), samples.end());
    for (std::int16_t& sample : stored) {
        sample = qToLittleEndian(sample);
    }
    const auto size = static_cast<qint64>(stored.size()) * static_cast<qint64>(sizeof(std::int16_t));
    constexpr qint64 mostWaveBytes = 0xFFFFFFFFLL - waveHeaderSize;
    if (dataBytes_ + size > mostWaveBytes) {
        return failed(QStringLiteral("a WAVE file cannot hold that much sound"));
    }
    if (!write(QByteArray::fromRawData(reinterpret_cast<const char*>(stored.data()), size))) {
        return false;
    }
    dataBytes_ += size;
    return true;
}

bool WaveExport::takeFrame(SoundSink& sink)
{
    if (frame_->ch_layout.nb_channels != channels_) {
        return failed(QStringLiteral("the sound changes its number of channels"));
    }
    std::int64_t position = expected_;
    if (frame_->pts != AV_NOPTS_VALUE) {
        const std::int64_t time = av_rescale_q(frame_->pts, stream_->time_base, AVRational{1, AV_TIME_BASE});
        const std::int64_t told = rescaled(time - origin_, sampleRate_, AV_TIME_BASE);
        // Times are rounded; only a real jump counts.
        const bool jumps =
            expected_ == std::numeric_limits<std::int64_t>::min() || std::abs(told - expected_) > sampleRate_ / 20;
        position = jumps ? told : expected_;
    }
    if (position == std::numeric_limits<std::int64_t>::min()) {
        position = 0;
    }
    expected_ = position + frame_->nb_samples;
    return sink.add(position, interleaved(*frame_, channels_));
}

bool WaveExport::takeFrames(SoundSink& sink)
{
    int error = 0;
    while ((error = avcodec_receive_frame(decoder_.get(), frame_.get())) >= 0) {
        if (!takeFrame(sink)) {
            return false;
        }
    }
    // One bad packet is a click, not the end of the sound; it is told here, by the decoder, more often than at sending.
    return error == AVERROR(EAGAIN) || error == AVERROR_EOF || error == AVERROR_INVALIDDATA || failed(error);
}

bool WaveExport::decodeAll(SoundSink& sink)
{
    const PacketPointer packet(av_packet_alloc());
    if (packet == nullptr) {
        return failed(AVERROR(ENOMEM));
    }
    int error = 0;
    while (!sink.finished() && (error = av_read_frame(input_->context(), packet.get())) >= 0) {
        if (packet->stream_index == stream_->index) {
            error = avcodec_send_packet(decoder_.get(), packet.get());
            if (error < 0 && error != AVERROR_INVALIDDATA) {
                return failed(error);
            }
            if (!takeFrames(sink)) {
                return false;
            }
        }
        av_packet_unref(packet.get());
    }
    if (error < 0 && error != AVERROR_EOF && error != AVERROR_INVALIDDATA) {
        return failed(error);
    }
    error = avcodec_send_packet(decoder_.get(), nullptr);
    return error < 0 ? failed(error) : takeFrames(sink);
}

bool WaveExport::run(const QString& sourcePath, const QString& destinationPath, const EditTimeline& timeline)
{
    if (!openDecoder(sourcePath)) {
        return false;
    }
    const std::int64_t frames = rescaled(timeline.duration(), sampleRate_, timeline.timeScale());
    if (!hasRoomFor(destinationPath, static_cast<std::uint64_t>(std::max<std::int64_t>(frames, 0)) *
                                         static_cast<std::uint64_t>(channels_) * sizeof(std::int16_t))) {
        return failed(QStringLiteral("not enough space on the volume"));
    }
    Result<SafeOutput> file = SafeOutput::open(nativePath(destinationPath).toStdString());
    if (!file) {
        return failed(QString::fromStdString(file.reason()));
    }
    file_ = std::move(*file);
    if (!write(waveHeader(sampleRate_, channels_, 0))) {
        return false;
    }
    SoundSink sink(timeline, sampleRate_, channels_,
                   [this](std::span<const std::int16_t> samples) { return writeSamples(samples); });
    if (!decodeAll(sink)) {
        return false;
    }
    if (::lseek(file_->fd(), 0, SEEK_SET) != 0) {
        return failed(systemErrorText());
    }
    if (!write(waveHeader(sampleRate_, channels_, dataBytes_))) {
        return false;
    }
    const Result<void, QString> whole = published(*file_);
    return whole || failed(whole.reason());
}

} // namespace

Result<void, QString> exportWave(const QString& sourcePath, const QString& destinationPath,
                                 const EditTimeline& timeline)
{
    WaveExport job;
    if (!job.run(sourcePath, destinationPath, timeline)) {
        return Failure{job.reason()};
    }
    return {};
}

} // namespace tavrix
