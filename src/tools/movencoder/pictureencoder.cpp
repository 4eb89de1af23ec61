// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/pictureencoder.h"

#include "aic/encoder.h"
#include "prores/encoder.h"

#include <array>

extern "C" {
#include <libavutil/opt.h>
}

namespace tavrix::movencoder
{

namespace
{

class AppleIntermediateEncoder : public PictureEncoder
{
public:
    AppleIntermediateEncoder(const FormatSettings& settings, const Fit& fit)
        : settings_(settings), encoder_(fit.width, fit.height)
    {
    }

    [[nodiscard]] AVPixelFormat pixelFormat() const override { return AV_PIX_FMT_YUV420P; }

    [[nodiscard]] std::string name() const override { return formatName(Format::AppleIntermediate); }

    Result<void> describe(AVCodecParameters& parameters) const override
    {
        parameters.codec_id = AV_CODEC_ID_AIC;
        parameters.codec_tag = MKTAG('i', 'c', 'o', 'd');
        parameters.bits_per_coded_sample = 24;
        return {};
    }

    Result<void> encode(const AVFrame& picture, Fields fields, std::vector<std::uint8_t>& bytes) override
    {
        const aic::Picture planes{{picture.data[0], picture.data[1], picture.data[2]},
                                  {picture.linesize[0], picture.linesize[1], picture.linesize[2]},
                                  fields.interlaced};
        if (settings_.bytesPerFrame > 0) {
            encoder_.encodeToSize(planes, static_cast<std::size_t>(settings_.bytesPerFrame), bytes);
        } else {
            encoder_.encode(planes, settings_.quantiser, bytes);
        }
        return {};
    }

private:
    FormatSettings settings_;
    aic::Encoder encoder_;
};

// A ProRes frame header knows few tags and the encoder replaces any other by 0, which reads as RGB. Tags of the same
// meaning go in their place.
AVColorSpace proResMatrix(AVColorSpace matrix)
{
    switch (matrix) {
    case AVCOL_SPC_BT709:
    case AVCOL_SPC_SMPTE170M:
    case AVCOL_SPC_BT2020_NCL:
        return matrix;
    case AVCOL_SPC_BT470BG:
        return AVCOL_SPC_SMPTE170M;
    default:
        return AVCOL_SPC_UNSPECIFIED;
    }
}

AVColorTransferCharacteristic proResTransfer(AVColorTransferCharacteristic transfer)
{
    switch (transfer) {
    case AVCOL_TRC_BT709:
    case AVCOL_TRC_SMPTE2084:
    case AVCOL_TRC_ARIB_STD_B67:
        return transfer;
    case AVCOL_TRC_SMPTE170M:
    case AVCOL_TRC_BT2020_10:
    case AVCOL_TRC_BT2020_12:
        return AVCOL_TRC_BT709;
    default:
        return AVCOL_TRC_UNSPECIFIED;
    }
}

AVColorPrimaries proResPrimaries(AVColorPrimaries primaries)
{
    switch (primaries) {
    case AVCOL_PRI_BT709:
    case AVCOL_PRI_BT470BG:
    case AVCOL_PRI_SMPTE170M:
    case AVCOL_PRI_BT2020:
    case AVCOL_PRI_SMPTE431:
    case AVCOL_PRI_SMPTE432:
        return primaries;
    default:
        return AVCOL_PRI_UNSPECIFIED;
    }
}

class ProResEncoder : public PictureEncoder
{
public:
    Result<void> open(const FormatSettings& settings, const PictureFacts& facts)
    {
        // Of the library's two encoders this one is several times faster, and closer to the picture.
        const AVCodec* codec = avcodec_find_encoder_by_name("prores_aw");
        if (codec == nullptr) {
            return Failure{"the FFmpeg libraries of this system have no ProRes encoder"};
        }
        codec_.reset(avcodec_alloc_context3(codec));
        packet_.reset(av_packet_alloc());
        frame_.reset(av_frame_alloc());
        if (!codec_ || !packet_ || !frame_) {
            return Failure{"out of memory"};
        }
        codec_->width = facts.fit.width;
        codec_->height = facts.fit.height;
        codec_->pix_fmt = AV_PIX_FMT_YUV422P10LE;
        codec_->profile = settings.profile;
        codec_->time_base = facts.timeBase;
        codec_->sample_aspect_ratio = {facts.fit.pixelAspect.num, facts.fit.pixelAspect.den};
        codec_->color_primaries = proResPrimaries(facts.colours.primaries);
        codec_->color_trc = proResTransfer(facts.colours.transfer);
        codec_->colorspace = proResMatrix(facts.colours.matrix);
        codec_->color_range = AVCOL_RANGE_MPEG;
        // Pictures go to many encoders at once; threads inside each would only get in one another's way.
        codec_->thread_count = 1;
        if (facts.fields.interlaced) {
            codec_->flags |= AV_CODEC_FLAG_INTERLACED_DCT;
        }
        // Players that look for a maker know this one.
        av_opt_set(codec_.get(), "vendor", "apl0", AV_OPT_SEARCH_CHILDREN);
        const int result = avcodec_open2(codec_.get(), codec, nullptr);
        if (result < 0) {
            return Failure{"the ProRes encoder does not start: " + avErrorText(result)};
        }
        return {};
    }

    [[nodiscard]] AVPixelFormat pixelFormat() const override { return AV_PIX_FMT_YUV422P10LE; }

    [[nodiscard]] std::string name() const override
    {
        static constexpr std::array<const char*, 4> endings{" Proxy", " LT", "", " HQ"};
        return formatName(Format::ProRes) + std::string(endings.at(static_cast<std::size_t>(codec_->profile)));
    }

    Result<void> describe(AVCodecParameters& parameters) const override
    {
        const int result = avcodec_parameters_from_context(&parameters, codec_.get());
        if (result < 0) {
            return Failure{avErrorText(result)};
        }
        return {};
    }

    // The library's encoder codes the first picture. Where our own one makes the same of it, it goes on several times
    // faster; the library knows more kinds of pictures, interlaced ones for example, and may change.
    Result<void> encode(const AVFrame& picture, Fields fields, std::vector<std::uint8_t>& bytes) override
    {
        if (own_) {
            own_->encode(planesOf(picture), bytes);
            return {};
        }
        auto coded = encodeByLibrary(picture, fields, bytes);
        if (coded && !compared_) {
            compared_ = true;
            takeOver(picture, bytes);
        }
        return coded;
    }

private:
    static prores::Picture planesOf(const AVFrame& picture)
    {
        prores::Picture planes{};
        for (std::size_t i = 0; i < 3; ++i) {
            planes.planes[i] = reinterpret_cast<const std::uint16_t*>(picture.data[i]);
            planes.strides[i] = picture.linesize[i] / 2;
        }
        return planes;
    }

    void takeOver(const AVFrame& picture, const std::vector<std::uint8_t>& expected)
    {
        auto own = prores::Encoder::like(expected, codec_->profile);
        if (!own) {
            return;
        }
        std::vector<std::uint8_t> bytes;
        own->encode(planesOf(picture), bytes);
        if (bytes == expected) {
            own_ = std::move(own);
        }
    }

    Result<void> encodeByLibrary(const AVFrame& picture, Fields fields, std::vector<std::uint8_t>& bytes)
    {
        av_frame_unref(frame_.get());
        int result = av_frame_ref(frame_.get(), &picture);
        if (result >= 0) {
            setFields(*frame_, fields);
            frame_->pict_type = AV_PICTURE_TYPE_NONE;
            frame_->pts = 0;
            // The encoder takes the tags of its frame header from the picture, which may come from a scaler.
            frame_->color_primaries = codec_->color_primaries;
            frame_->color_trc = codec_->color_trc;
            frame_->colorspace = codec_->colorspace;
            result = avcodec_send_frame(codec_.get(), frame_.get());
        }
        if (result >= 0) {
            result = avcodec_receive_packet(codec_.get(), packet_.get());
        }
        av_frame_unref(frame_.get());
        if (result < 0) {
            return Failure{"the ProRes encoder failed: " + avErrorText(result)};
        }
        bytes.assign(packet_->data, packet_->data + packet_->size);
        av_packet_unref(packet_.get());
        return {};
    }

    CodecPtr codec_;
    PacketPtr packet_;
    FramePtr frame_;
    std::unique_ptr<prores::Encoder> own_;
    bool compared_ = false;
};

} // namespace

Result<std::unique_ptr<PictureEncoder>> makePictureEncoder(Format format, const FormatSettings& settings,
                                                           const PictureFacts& facts)
{
    const Fit& fit = facts.fit;
    if (!aic::sizeAllowed(fit.width, fit.height)) {
        return Failure{"pictures of " + std::to_string(fit.width) + "x" + std::to_string(fit.height) +
                       " cannot be encoded; each side must be from 16 to 4096"};
    }
    if (format == Format::AppleIntermediate) {
        return std::make_unique<AppleIntermediateEncoder>(settings, fit);
    }
    auto encoder = std::make_unique<ProResEncoder>();
    if (auto opened = encoder->open(settings, facts); !opened) {
        return Failure{opened.reason()};
    }
    return encoder;
}

} // namespace tavrix::movencoder
