#include "encode/sizeforecast.h"

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

constexpr double plainSound = 48000.0 * 2 * 16;
// Means of camera clips; a busy picture takes half as much again, a still one half.
constexpr double intermediateBytesPerPixel = 0.14;
constexpr double proresBytesPerPixel = 0.24;
// Packets of 188 bytes with their heads, tables and stuffing.
constexpr double transportShare = 0.95;

double secondPassBits(const ForecastRequest& request, double bytesPerPixel)
{
    return request.rate * request.width * request.height * bytesPerPixel * 8;
}

double soundBits(const ForecastRequest& request)
{
    if (!request.sound) {
        return 0;
    }
    switch (request.out) {
    case 0:
        return 64000;
    case 1:
        return 128000;
    case 2:
        return request.avi ? plainSound : 192000;
    default:
        return plainSound;
    }
}

// Bits a second of the output's pictures; 0 when unknown.
double shownBits(const ForecastRequest& request)
{
    const bool sizeKnown = request.rate > 0 && request.width > 0 && request.height > 0;
    switch (request.out) {
    case 0:
        return 250000;
    case 1:
        return 1400000;
    case 2:
    case 3:
        return request.pictureBits;
    case 4:
        return sizeKnown ? secondPassBits(request, intermediateBytesPerPixel) : 0;
    case 5:
        return sizeKnown ? secondPassBits(request, proresBytesPerPixel) : 0;
    default:
        return 0;
    }
}

} // namespace

qint64 forecastBytes(const ForecastRequest& request)
{
    constexpr double most = 1e15;
    const double pictures = shownBits(request);
    const double bytes = (pictures + soundBits(request)) * request.seconds / 8;
    return pictures > 0 && bytes > 0 ? static_cast<qint64>(std::llround(std::min(bytes, most))) : -1;
}

double pictureBits(int pictureRate, int wholeRate, int soundRates, const QString& wrapper)
{
    if (pictureRate > 0) {
        return pictureRate * 1000.0;
    }
    const double share = wrapper.startsWith(QLatin1String("mpeg")) ? transportShare : 1.0;
    return std::max(0.0, (wholeRate * share - soundRates) * 1000);
}

} // namespace tavrix
