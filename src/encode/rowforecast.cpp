// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/rowforecast.h"

#include "encode/encoderarguments.h"
#include "encode/outputformats.h"
#include "encode/sizeforecast.h"
#include "probe/cameraclip.h"

#include <algorithm>

namespace tavrix
{

namespace
{

// What the first pass of two writes: the copy into a movie.
constexpr int firstPassFormat = 3;
// The picture of the settings that the program brings for both second passes.
constexpr int secondPassWidth = 1280;
constexpr int secondPassHeight = 720;

int soundRates(const MediaInfoRecord& infos)
{
    int sum = 0;
    for (int i = 0; infos.contains(record::stream('a', i, "codec")); ++i) {
        sum += infos.value(record::stream('a', i, "bitrate")).toInt();
    }
    return sum;
}

} // namespace

qint64 outputForecast(const MediaInfoRecord& infos, int out)
{
    ForecastRequest request;
    request.out = out;
    request.seconds = infos.value(record::w_duration).toDouble();
    request.rate = clipRate(infos).value_or(0);
    request.width = secondPassWidth;
    request.height = secondPassHeight;
    request.avi = encDstExtensionStr(out, infos.value(record::v0_codec).toString()) == QLatin1String("avi");
    request.sound = infos.contains(record::stream('a', 0, "codec"));
    request.pictureBits =
        pictureBits(infos.value(record::stream('v', 0, "bitrate")).toInt(), infos.value(record::w_bitrate).toInt(),
                    soundRates(infos), infos.value(record::wrapper).toString());
    return forecastBytes(request);
}

qint64 leastRoom(const MediaInfoRecord& infos, int out)
{
    const qint64 output = std::max<qint64>(0, outputForecast(infos, out));
    if (!isTwoPassFormat(out)) {
        return output;
    }
    return output / 2 + std::max<qint64>(0, outputForecast(infos, firstPassFormat));
}

} // namespace tavrix
