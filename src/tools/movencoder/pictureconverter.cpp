// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/pictureconverter.h"

#include "media/pixelformat.h"

#include <array>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace tavrix::movencoder
{

namespace
{

int planeLines(const AVPixFmtDescriptor& descriptor, int plane, int lines)
{
    const int shift = plane == 1 || plane == 2 ? descriptor.log2_chroma_h : 0;
    return (lines + (1 << shift) - 1) >> shift;
}

void blacken(AVFrame& frame)
{
    std::array<std::ptrdiff_t, 4> strides{};
    for (std::size_t plane = 0; plane < strides.size(); ++plane) {
        strides[plane] = frame.linesize[plane];
    }
    av_image_fill_black(frame.data, strides.data(), static_cast<AVPixelFormat>(frame.format), AVCOL_RANGE_MPEG,
                        frame.width, frame.height);
}

} // namespace

Result<FramePtr> PictureConverter::makePicture(int width, int height) const
{
    FramePtr frame(av_frame_alloc());
    if (!frame) {
        return Failure{"out of memory"};
    }
    frame->format = format_;
    frame->width = width;
    frame->height = height;
    const int result = av_frame_get_buffer(frame.get(), 0);
    if (result < 0) {
        return Failure{avErrorText(result)};
    }
    return frame;
}

Result<void> PictureConverter::makeScaler(const Shape& shape)
{
    scaler_.reset(sws_alloc_context());
    if (!scaler_) {
        return Failure{"out of memory"};
    }
    const bool keepsLines = shape.height == fit_.pictureHeight;
    SwsContext* scaler = scaler_.get();
    av_opt_set_int(scaler, "srcw", shape.width, 0);
    av_opt_set_int(scaler, "srch", shape.fields ? shape.height / 2 : shape.height, 0);
    av_opt_set_int(scaler, "src_format", media::plainPixelFormat(shape.format), 0);
    av_opt_set_int(scaler, "src_range", shape.fullRange ? 1 : 0, 0);
    av_opt_set_int(scaler, "dstw", fit_.pictureWidth, 0);
    av_opt_set_int(scaler, "dsth", shape.fields && keepsLines ? shape.height / 2 : fit_.pictureHeight, 0);
    av_opt_set_int(scaler, "dst_format", format_, 0);
    av_opt_set_int(scaler, "dst_range", 0, 0);
    av_opt_set_int(scaler, "sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND, 0);
    const int result = sws_init_context(scaler, nullptr, nullptr);
    if (result < 0) {
        scaler_.reset();
        const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(shape.format));
        return Failure{std::string("pictures of the format ") + (name != nullptr ? name : "?") +
                       " cannot be converted"};
    }
    return {};
}

Result<void> PictureConverter::prepare(const Shape& shape)
{
    if (shape == shape_ && scaled_) {
        return {};
    }
    shape_ = shape;
    scaled_.reset();
    if (auto made = makeScaler(shape); !made) {
        return made;
    }
    auto picture = makePicture(fit_.pictureWidth, fit_.pictureHeight);
    if (!picture) {
        return Failure{picture.reason()};
    }
    if (!fillsCanvas() && !canvas_) {
        auto canvas = makePicture(fit_.width, fit_.height);
        if (!canvas) {
            return Failure{canvas.reason()};
        }
        canvas_ = *std::move(canvas);
        blacken(*canvas_);
    }
    scaled_ = *std::move(picture);
    return {};
}

void PictureConverter::scaleLines(const AVFrame& source, int firstLine, int step, const AVFrame& target,
                                  int targetStep) const
{
    std::array<const std::uint8_t*, 4> from{};
    std::array<int, 4> fromStrides{};
    std::array<std::uint8_t*, 4> to{};
    std::array<int, 4> toStrides{};
    const int targetLine = targetStep > 1 ? firstLine : 0;
    for (std::size_t plane = 0; plane < 4; ++plane) {
        if (source.data[plane] != nullptr) {
            from[plane] = source.data[plane] + static_cast<std::ptrdiff_t>(firstLine) * source.linesize[plane];
            fromStrides[plane] = step * source.linesize[plane];
        }
        if (target.data[plane] != nullptr) {
            to[plane] = target.data[plane] + static_cast<std::ptrdiff_t>(targetLine) * target.linesize[plane];
            toStrides[plane] = targetStep * target.linesize[plane];
        }
    }
    sws_scale(scaler_.get(), from.data(), fromStrides.data(), 0, source.height / step, to.data(), toStrides.data());
}

// The scaler may write a little beyond its picture, so it never works inside the canvas itself.
void PictureConverter::placeInCanvas() const
{
    const AVPixFmtDescriptor& descriptor = *av_pix_fmt_desc_get(format_);
    for (int plane = 0; plane < 3; ++plane) {
        const int left = av_image_get_linesize(format_, fit_.x, plane);
        const int bytes = av_image_get_linesize(format_, fit_.pictureWidth, plane);
        const int top = planeLines(descriptor, plane, fit_.y);
        std::uint8_t* to = canvas_->data[plane] + static_cast<std::ptrdiff_t>(top) * canvas_->linesize[plane] + left;
        av_image_copy_plane(to, canvas_->linesize[plane], scaled_->data[plane], scaled_->linesize[plane], bytes,
                            planeLines(descriptor, plane, fit_.pictureHeight));
    }
}

Result<const AVFrame*> PictureConverter::convert(const AVFrame& source)
{
    Shape shape{source.width, source.height, source.format, source.color_range == AVCOL_RANGE_JPEG, false};
    shape.fullRange = shape.fullRange || media::plainPixelFormat(source.format) != source.format;
    const bool keepsSize = source.width == fit_.pictureWidth && source.height == fit_.pictureHeight;
    if (keepsSize && fillsCanvas() && source.format == format_ && !shape.fullRange) {
        return &source;
    }
    shape.fields = fieldsOf(source).interlaced && source.height % 4 == 0;
    if (auto prepared = prepare(shape); !prepared) {
        return Failure{prepared.reason()};
    }
    if (!shape.fields) {
        scaleLines(source, 0, 1, *scaled_, 1);
    } else if (source.height == fit_.pictureHeight) {
        scaleLines(source, 0, 2, *scaled_, 2);
        scaleLines(source, 1, 2, *scaled_, 2);
    } else {
        scaleLines(source, 0, 2, *scaled_, 1);
    }
    if (fillsCanvas()) {
        return static_cast<const AVFrame*>(scaled_.get());
    }
    placeInCanvas();
    return static_cast<const AVFrame*>(canvas_.get());
}

} // namespace tavrix::movencoder
