// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"
#include "tools/movencoder/geometry.h"

// Brings decoded pictures into the size, pixel format and range of the output.
namespace tavrix::movencoder
{

// Full-range pictures become limited-range ones, since neither output format says which it is. The fields of interlaced
// pictures are never mixed: they are converted one by one where the lines stay as they are, and the picture is made
// from its upper field alone where the height changes. One converter serves one thread.
class PictureConverter
{
public:
    PictureConverter(const Fit& fit, AVPixelFormat format) : fit_(fit), format_(format) {}

    // The converted picture, valid until the next call; it is `source` itself when there is nothing to do.
    Result<const AVFrame*> convert(const AVFrame& source);

private:
    // What a scaler was made for: it is made anew when the source changes in its middle.
    struct Shape {
        int width = 0;
        int height = 0;
        int format = AV_PIX_FMT_NONE;
        bool fullRange = false;
        bool fields = false;
        bool operator==(const Shape&) const = default;
    };

    Result<void> prepare(const Shape& shape);
    Result<void> makeScaler(const Shape& shape);
    Result<FramePtr> makePicture(int width, int height) const;
    void scaleLines(const AVFrame& source, int firstLine, int step, const AVFrame& target, int targetStep) const;
    void placeInCanvas() const;
    [[nodiscard]] bool fillsCanvas() const
    {
        return fit_.pictureWidth == fit_.width && fit_.pictureHeight == fit_.height;
    }

    Fit fit_;
    AVPixelFormat format_;
    Shape shape_;
    ScalerPtr scaler_;
    FramePtr scaled_;
    FramePtr canvas_;
};

} // namespace tavrix::movencoder
