// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/picturefilters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tavrix::front
{

namespace
{

// Pictures per second; 0 when the text is no rate.
double rateOf(const std::string& text)
{
    const auto slash = text.find('/');
    const std::string first = text.substr(0, slash);
    const std::string second = slash == std::string::npos ? "1" : text.substr(slash + 1);
    const auto isNumber = [](const std::string& part) {
        return !part.empty() && part.find_first_not_of("0123456789.") == std::string::npos;
    };
    if (!isNumber(first) || !isNumber(second)) {
        return 0;
    }
    const double rate = std::strtod(first.c_str(), nullptr) / std::strtod(second.c_str(), nullptr);
    return std::isfinite(rate) ? rate : 0;
}

// The rate of a source whose pictures are evenly spaced; 0 for others.
double steadyRate(const media::StreamFacts* picture)
{
    if (picture == nullptr || !picture->nominalRate.known()) {
        return 0;
    }
    const double nominal = picture->nominalRate.value();
    const double mean = picture->meanRate.known() ? picture->meanRate.value() : nominal;
    return std::fabs(mean - nominal) < nominal * 0.02 ? nominal : 0;
}

// Parts of a second for times of our own: a source's scale may be as coarse as its pictures.
constexpr double fineScale = 720000;

struct Frame {
    int width = 0;
    int height = 0;
    int aspectWidth = 0;
    int aspectHeight = 0;
};

std::optional<Frame> frameOf(const std::string& filters)
{
    Frame frame;
    int end = 0;
    const int fields = std::sscanf(filters.c_str(), "scale=%5d:%5d,setdar=%5d/%5d%n", &frame.width, &frame.height,
                                   &frame.aspectWidth, &frame.aspectHeight, &end);
    const bool complete = fields == 4 && std::size_t(end) == filters.size();
    const bool usable = frame.width > 0 && frame.height > 0 && frame.aspectWidth > 0 && frame.aspectHeight > 0;
    return complete && usable ? std::optional(frame) : std::nullopt;
}

// The even number nearest to `value`, from 2 to `most`: colour is stored for every second point.
int evenSide(double value, int most)
{
    return std::clamp(2 * int(std::lround(value / 2)), 2, most);
}

} // namespace

std::optional<std::string> nearestPictureFilters(const std::string& rate, const media::StreamFacts* picture)
{
    // A picture serves the output time when it is less than half a picture late, of the output or of a faster source.
    // A little less than half: where a picture lies in the middle, rounded times would decide now so and now so.
    constexpr double reach = 0.48;
    const double value = rateOf(rate);
    if (value < 0.01 || value > 1000) {
        return std::nullopt;
    }
    const auto shift = std::lround(fineScale * reach / std::max(value, steadyRate(picture)));
    return "settb=1/720000,setpts=PTS-" + std::to_string(shift) + ",fps=fps=" + rate + ":round=up";
}

std::string respacedFilters(const media::StreamFacts& picture, double clipStart, bool isLast)
{
    const double steady = steadyRate(&picture);
    if (picture.edits.pieces < 2 || steady <= 0 || !picture.shownPackets || !picture.duration) {
        return {};
    }
    const bool gapless = std::fabs(double(*picture.shownPackets) / steady - *picture.duration) < 2 / steady;
    if (!gapless) {
        return {};
    }
    const media::Ratio& nominal = picture.nominalRate;
    const auto start = std::lround((picture.start.value_or(0) - clipStart) * fineScale);
    const std::string interval = std::to_string(nominal.den) + '/' + std::to_string(nominal.num);
    const std::string respaced = "settb=1/720000,setpts=" + std::to_string(start) + "+N*720000*" + interval;
    const std::string rate = std::to_string(nominal.num) + '/' + std::to_string(nominal.den);
    // A later ffmpeg hands the filters' time base to the encoder, and MPEG-4 has no place for such a fine one. It also
    // forgets how long a picture is that "setpts" has moved, and the file would end before its last one.
    return isLast ? respaced + ",fps=fps=" + rate : respaced;
}

std::string fittedFilters(const std::string& filters, const media::StreamFacts& picture)
{
    const auto frame = frameOf(filters);
    if (!frame || !picture.turning.swapsSides() || picture.width <= 0 || picture.height <= 0) {
        return filters;
    }
    const double pixel = picture.pixelAspect.known() ? picture.pixelAspect.value() : 1;
    const double shape = picture.height / (picture.width * pixel); // width over height, upright
    const double frameShape = double(frame->aspectWidth) / frame->aspectHeight;
    const int width = shape < frameShape ? evenSide(frame->width * shape / frameShape, frame->width) : frame->width;
    const int height = shape < frameShape ? frame->height : evenSide(frame->height * frameShape / shape, frame->height);
    const auto text = [](int number) {
        return std::to_string(number);
    };
    const std::string left = text((frame->width - width) / 4 * 2);
    const std::string top = text((frame->height - height) / 4 * 2);
    return "scale=" + text(width) + ':' + text(height) + ",pad=" + text(frame->width) + ':' + text(frame->height) +
           ':' + left + ':' + top + ":black,setdar=" + text(frame->aspectWidth) + '/' + text(frame->aspectHeight);
}

std::string forgottenMirror(const media::Turning& turning)
{
    // It takes the angle of the matrix alone, which for a mirrored picture is half a turn too much.
    if (!turning.mirrored) {
        return {};
    }
    return turning.swapsSides() ? "hflip" : "vflip";
}

} // namespace tavrix::front
