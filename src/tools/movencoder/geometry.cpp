// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

extern "C" {
#include <libavutil/rational.h>
}

namespace tavrix::movencoder
{

namespace
{

// Camera formats are off by a line of macroblocks or by rounded aspects; below one percent nobody wants a border.
constexpr double sameShape = 0.01;

int evenSide(double exact, int most)
{
    return std::clamp(2 * static_cast<int>(std::lround(exact / 2)), 2, most);
}

Ratio reduced(std::int64_t num, std::int64_t den)
{
    constexpr std::int64_t largestTerm = 65535;
    Ratio ratio{1, 1};
    av_reduce(&ratio.num, &ratio.den, num, den, largestTerm);
    return ratio.num > 0 && ratio.den > 0 ? ratio : Ratio{1, 1};
}

} // namespace

Fit fitPicture(int width, int height, Ratio pixelAspect, const FormatSettings& settings)
{
    if (pixelAspect.num <= 0 || pixelAspect.den <= 0) {
        pixelAspect = {1, 1};
    }
    if (settings.width == 0) {
        return {width, height, 0, 0, width, height, pixelAspect};
    }

    Fit fit{settings.width, settings.height, 0, 0, settings.width, settings.height, {1, 1}};
    const double shape = static_cast<double>(width) * pixelAspect.num / pixelAspect.den / height;
    const double wanted = static_cast<double>(fit.width) / fit.height;
    if (std::abs(shape / wanted - 1) < sameShape) {
        return fit;
    }
    if (!settings.letterbox) {
        fit.pixelAspect = reduced(static_cast<std::int64_t>(width) * pixelAspect.num * fit.height,
                                  static_cast<std::int64_t>(height) * pixelAspect.den * fit.width);
        return fit;
    }
    if (shape < wanted) {
        fit.pictureWidth = evenSide(fit.height * shape, fit.width);
    } else {
        fit.pictureHeight = evenSide(fit.width / shape, fit.height);
    }
    fit.x = (fit.width - fit.pictureWidth) / 4 * 2;
    fit.y = (fit.height - fit.pictureHeight) / 4 * 2;
    return fit;
}

} // namespace tavrix::movencoder
