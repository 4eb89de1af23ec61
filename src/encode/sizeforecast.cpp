// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/sizeforecast.h"

#include "encode/outputformats.h"

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

// Packets of 188 bytes with their heads, tables and stuffing.
constexpr double transportShare = 0.95;

} // namespace

qint64 forecastBytes(const ForecastRequest& request)
{
    constexpr double most = 1e15;
    const OutputFormat& format = outputFormat(request.out);
    const double pictures = isOutputFormat(request.out) ? format.pictureBits(request) : 0;
    const double sound = request.sound ? format.soundBits(request) : 0;
    const double bytes = (pictures + sound) * request.seconds / 8;
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
