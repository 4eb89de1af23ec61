// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/framescaler.h"

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include <array>

namespace tavrix
{

namespace
{

constexpr int highDefinitionHeight = 720;

// The kinds that players give for camera clips; AV_PIX_FMT_NONE for the others.
int scalerFormat(QVideoFrameFormat::PixelFormat format)
{
    switch (format) {
    case QVideoFrameFormat::Format_YUV420P:
        return AV_PIX_FMT_YUV420P;
    case QVideoFrameFormat::Format_YUV422P:
        return AV_PIX_FMT_YUV422P;
    case QVideoFrameFormat::Format_NV12:
        return AV_PIX_FMT_NV12;
    case QVideoFrameFormat::Format_NV21:
        return AV_PIX_FMT_NV21;
    default:
        return AV_PIX_FMT_NONE;
    }
}

bool isUpright(const QVideoFrame& frame)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    return frame.rotation() == QtVideo::Rotation::None && !frame.mirrored() &&
           frame.surfaceFormat().rotation() == QtVideo::Rotation::None && !frame.surfaceFormat().isMirrored();
#else
    return frame.rotationAngle() == QVideoFrame::Rotation0 && !frame.mirrored() && !frame.surfaceFormat().isMirrored();
#endif
}

// Clips that do not say it have the colours of their time: the large ones those of high definition.
int colourSpace(const QVideoFrameFormat& format)
{
    switch (format.colorSpace()) {
    case QVideoFrameFormat::ColorSpace_BT709:
        return SWS_CS_ITU709;
    case QVideoFrameFormat::ColorSpace_BT2020:
        return SWS_CS_BT2020;
    case QVideoFrameFormat::ColorSpace_Undefined:
        return format.frameHeight() >= highDefinitionHeight ? SWS_CS_ITU709 : SWS_CS_ITU601;
    default:
        return SWS_CS_ITU601;
    }
}

} // namespace

void FrameScaler::Release::operator()(SwsContext* context) const
{
    sws_freeContext(context);
}

QImage FrameScaler::picture(const QVideoFrame& frame, const QSize& size)
{
    if (!frame.isValid() || size.isEmpty()) {
        return {};
    }
    const int format = scalerFormat(frame.pixelFormat());
    QVideoFrame mapped = frame;
    if (format != AV_PIX_FMT_NONE && isUpright(frame) && mapped.map(QVideoFrame::ReadOnly)) {
        QImage image(size, QImage::Format_RGB32);
        const bool done = !image.isNull() && convert(mapped, format, image);
        mapped.unmap();
        if (done) {
            return image;
        }
    }
    const QImage whole = frame.toImage();
    return whole.isNull() ? whole : whole.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool FrameScaler::convert(QVideoFrame& mapped, int format, QImage& image)
{
    const QSize from = mapped.size();
    context_.reset(sws_getCachedContext(context_.release(), from.width(), from.height(),
                                        static_cast<AVPixelFormat>(format), image.width(), image.height(),
                                        AV_PIX_FMT_RGB32, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!context_) {
        return false;
    }
    const bool full = mapped.surfaceFormat().colorRange() == QVideoFrameFormat::ColorRange_Full;
    constexpr int unchanged = 1 << 16;
    sws_setColorspaceDetails(context_.get(), sws_getCoefficients(colourSpace(mapped.surfaceFormat())), full ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, unchanged, unchanged);
    std::array<const uint8_t*, 4> planes{};
    std::array<int, 4> lines{};
    for (int i = 0; i < mapped.planeCount() && i < 4; ++i) {
        planes[static_cast<std::size_t>(i)] = mapped.bits(i);
        lines[static_cast<std::size_t>(i)] = mapped.bytesPerLine(i);
    }
    const std::array<uint8_t*, 4> target{image.bits()};
    const std::array<int, 4> targetLines{static_cast<int>(image.bytesPerLine())};
    return sws_scale(context_.get(), planes.data(), lines.data(), 0, from.height(), target.data(),
                     targetLines.data()) == image.height();
}

} // namespace tavrix
