// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/soundunpacking.h"

#include <cstring>
#include <string_view>

namespace tavrix
{

namespace
{

constexpr AVCodecID plainOf16 = AV_NE(AV_CODEC_ID_PCM_S16BE, AV_CODEC_ID_PCM_S16LE);
constexpr AVCodecID plainOf32 = AV_NE(AV_CODEC_ID_PCM_S32BE, AV_CODEC_ID_PCM_S32LE);

bool isUnpacked(AVCodecID codec, const AVOutputFormat& format)
{
    return std::string_view(avcodec_get_name(codec)).starts_with("pcm_") &&
           avformat_query_codec(&format, codec, FF_COMPLIANCE_NORMAL) <= 0;
}

} // namespace

bool isUnpackedInMovies(const std::string& codec)
{
    const AVCodecDescriptor* const known = avcodec_descriptor_get_by_name(codec.c_str());
    const auto* const movie = av_guess_format("mov", nullptr, nullptr);
    return known != nullptr && movie != nullptr && isUnpacked(known->id, *movie);
}

std::unique_ptr<SoundUnpacker> SoundUnpacker::of(const AVStream& stream, const AVOutputFormat& format)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    const bool readable = parameters.format == AV_SAMPLE_FMT_S16 || parameters.format == AV_SAMPLE_FMT_S32;
    const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
    if (!isUnpacked(parameters.codec_id, format) || !readable || codec == nullptr) {
        return nullptr;
    }
    std::unique_ptr<SoundUnpacker> unpacker(new SoundUnpacker);
    unpacker->decoder_.reset(avcodec_alloc_context3(codec));
    unpacker->frame_.reset(av_frame_alloc());
    unpacker->samples_ = static_cast<AVSampleFormat>(parameters.format);
    unpacker->channels_ = parameters.ch_layout.nb_channels;
    const bool opened = unpacker->decoder_ && unpacker->frame_ && unpacker->channels_ > 0 &&
                        avcodec_parameters_to_context(unpacker->decoder_.get(), &parameters) >= 0 &&
                        avcodec_open2(unpacker->decoder_.get(), codec, nullptr) >= 0;
    return opened ? std::move(unpacker) : nullptr;
}

void SoundUnpacker::describe(AVCodecParameters& parameters) const
{
    const int bytes = av_get_bytes_per_sample(samples_);
    parameters.codec_id = samples_ == AV_SAMPLE_FMT_S16 ? plainOf16 : plainOf32;
    parameters.codec_tag = 0;
    parameters.bits_per_coded_sample = bytes * 8;
    parameters.block_align = channels_ * bytes;
    parameters.bit_rate = std::int64_t{parameters.sample_rate} * channels_ * bytes * 8;
}

int SoundUnpacker::unpack(AVPacket& packet)
{
    int error = avcodec_send_packet(decoder_.get(), &packet);
    if (error >= 0) {
        error = avcodec_receive_frame(decoder_.get(), frame_.get());
    }
    if (error < 0) {
        return error == AVERROR(EAGAIN) ? AVERROR_INVALIDDATA : error;
    }
    const bool same = frame_->format == samples_ && frame_->ch_layout.nb_channels == channels_;
    const int bytes = frame_->nb_samples * channels_ * av_get_bytes_per_sample(samples_);
    const media::PacketPointer plain(av_packet_alloc());
    error = !same ? AVERROR_INVALIDDATA : !plain ? AVERROR(ENOMEM) : av_new_packet(plain.get(), bytes);
    if (error >= 0) {
        std::memcpy(plain->data, frame_->data[0], static_cast<std::size_t>(bytes));
        error = av_packet_copy_props(plain.get(), &packet);
    }
    av_frame_unref(frame_.get());
    if (error >= 0) {
        plain->stream_index = packet.stream_index;
        av_packet_unref(&packet);
        av_packet_move_ref(&packet, plain.get());
    }
    return error;
}

} // namespace tavrix
