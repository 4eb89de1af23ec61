// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/sizeforecast.h"

#include "encode/outputformats.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ForecastRow {
    const char* name;
    ForecastRequest request; // format, seconds, rate, width, height, bits of the pictures, AVI
    qint64 bytes;
};

class SizeForecast : public testing::TestWithParam<ForecastRow>
{
};

TEST_P(SizeForecast, FollowsFormatRateSizeAndLength)
{
    EXPECT_EQ(forecastBytes(GetParam().request), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rows, SizeForecast,
                         testing::Values(ForecastRow{"smallScreen", {0, 60, 29.97, 480, 272, 0, false}, 2355000},
                                         ForecastRow{"h264", {1, 60, 29.97, 640, 368, 0, false}, 11460000},
                                         ForecastRow{"rewrapped", {2, 60, 59.94, 1280, 720, 8e6, false}, 61440000},
                                         ForecastRow{"rewrappedAvi", {2, 60, 30, 640, 480, 8e6, true}, 71520000},
                                         ForecastRow{"movieCopy", {3, 60, 59.94, 1280, 720, 8e6, false}, 71520000},
                                         ForecastRow{"intermediate", {4, 60, 30, 1280, 720, 0, false}, 243763200},
                                         ForecastRow{"prores", {5, 60, 30, 1280, 720, 0, false}, 409651200},
                                         ForecastRow{"silent", {3, 60, 25, 640, 368, 1e6, false, false}, 7500000},
                                         ForecastRow{"silentAvi", {2, 60, 25, 640, 368, 1e6, true, false}, 7500000},
                                         ForecastRow{"silentH264", {1, 60, 25, 640, 368, 0, false, false}, 10500000},
                                         ForecastRow{"noLength", {1, 0, 25, 640, 368, 0, false}, -1},
                                         ForecastRow{"copyOfUnknown", {3, 60, 25, 640, 368, 0, false}, -1},
                                         ForecastRow{"secondPassOfUnknownRate", {5, 60, 0, 1280, 720, 0, false}, -1},
                                         ForecastRow{
                                             "noFormat", {outputFormatCount, 60, 25, 1280, 720, 1e6, false}, -1},
                                         ForecastRow{"endless", {5, 1e300, 25, 1280, 720, 0, false}, 1000000000000000}),
                         rowName<ForecastRow>);

TEST(PictureBits, AreTheStreamsOwnOrWhatIsLeftOfTheWhole)
{
    EXPECT_DOUBLE_EQ(pictureBits(5875, 6651, 768, QStringLiteral("mov,mp4,m4a,3gp,3g2,mj2")), 5875000);
    EXPECT_DOUBLE_EQ(pictureBits(0, 6651, 768, QStringLiteral("avi")), 5883000);
    EXPECT_DOUBLE_EQ(pictureBits(0, 8609, 192, QStringLiteral("mpegts")), 7986550);
    EXPECT_DOUBLE_EQ(pictureBits(0, 100, 768, QStringLiteral("avi")), 0);
    EXPECT_DOUBLE_EQ(pictureBits(0, 0, 0, QString()), 0);
}

} // namespace
