// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/pixelformat.h"

namespace tavrix::media
{

AVPixelFormat plainPixelFormat(int format)
{
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
        return AV_PIX_FMT_YUV411P;
    default:
        return static_cast<AVPixelFormat>(format);
    }
}

} // namespace tavrix::media
