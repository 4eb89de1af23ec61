// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/movencoder/settings.h"

// Where the source's picture goes in the output's.
namespace tavrix::movencoder
{

struct Ratio {
    int num;
    int den;
};

struct Fit {
    int width; // of the output
    int height;
    int x; // of the source's picture in it
    int y;
    int pictureWidth;
    int pictureHeight;
    Ratio pixelAspect; // of the output
};

// Sizes in pixels; an unknown pixel aspect (a side not above 0) counts as square. The picture's place and size are
// even, so that chroma samples stay whole.
[[nodiscard]] Fit fitPicture(int width, int height, Ratio pixelAspect, const FormatSettings& settings);

} // namespace tavrix::movencoder
