// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of video frames at the size they are shown in.
#pragma once

#include <QImage>
#include <QVideoFrame>

#include <memory>

struct SwsContext;

namespace tavrix
{

// Scales and converts in one step without a graphics card: a frame of 1280 x 720 takes some milliseconds, where the
// toolkit's own way takes longer than the frame lasts.
class FrameScaler
{
public:
    // The upright picture, `size` in pixels. Null for a frame that cannot be read and for an empty size.
    [[nodiscard]] QImage picture(const QVideoFrame& frame, const QSize& size);

private:
    struct Release {
        void operator()(SwsContext* context) const;
    };
    [[nodiscard]] bool convert(QVideoFrame& mapped, int format, QImage& image);

    std::unique_ptr<SwsContext, Release> context_;
};

} // namespace tavrix
