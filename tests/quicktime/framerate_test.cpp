// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/framerate.h"

#include "fakemedialibrary.h"
#include "quicktime/model/componentregistry.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <cmath>
#include <limits>

namespace tavrix::test
{

namespace
{

struct RateRow {
    const char* name;
    int frames;
    qint64 trackUnits; // duration of the only video track, 0 = no such track
    qint64 movieUnits;
    qint32 timeScale;
    float rate;
};

class MovieFpsTest : public testing::TestWithParam<RateRow>
{
};

FakeMovie movieOf(const RateRow& row)
{
    FakeMovie movie(QStringLiteral("/x"));
    movie.length = QTMakeTime(row.movieUnits, row.timeScale);
    if (row.trackUnits > 0) {
        movie.addTrack(QStringLiteral("vide"))->trackRange =
            QTMakeTimeRange(QTMakeTime(0, row.timeScale), QTMakeTime(row.trackUnits, row.timeScale));
    }
    for (int frame = 0; frame < row.frames; ++frame) {
        movie.sampleTimes.append(frame);
    }
    return movie;
}

} // namespace

TEST_P(MovieFpsTest, is)
{
    FakeMovie movie = movieOf(GetParam());
    EXPECT_FLOAT_EQ(movieFps(movie, 0), GetParam().rate);
}

INSTANTIATE_TEST_SUITE_P(Movies, MovieFpsTest,
                         testing::Values(RateRow{"plain", 250, 6000, 6000, 600, 25.0F},
                                         RateRow{"truncatedToThreeDecimals", 100, 1999, 1999, 600, 30.015F},
                                         RateRow{"timeScaleOf29970Corrects", 300, 299970, 299970, 29970, 29.97F},
                                         RateRow{"timeScaleOf23976Corrects", 240, 239000, 239000, 23976, 23.976F},
                                         RateRow{"timeScaleOf25000Corrects", 250, 249000, 249000, 25000, 25.0F},
                                         RateRow{"timeScaleOf2997DoesNot", 300, 29970, 29970, 2997, 30.0F},
                                         RateRow{"noVideoTrackTakesTheMoviesDuration", 50, 0, 1200, 600, 25.0F},
                                         RateRow{"trackOfNoLengthTakesTheMoviesDuration", 50, 54, 1200, 600, 25.0F},
                                         RateRow{"halfSecondStill", 1, 300, 300, 600, 2.0F},
                                         RateRow{"halfSecondOfForty", 20, 300, 300, 600, 0.0F},
                                         RateRow{"halfSecondOfThirty", 15, 300, 300, 600, 30.0F},
                                         RateRow{"sixtyForLonger", 120, 1200, 1200, 600, 60.0F},
                                         RateRow{"tooSlow", 1, 6000, 6000, 600, 0.0F},
                                         RateRow{"noFrames", 0, 6000, 6000, 600, 0.0F},
                                         RateRow{"noDuration", 10, 0, 0, 600, 0.0F},
                                         RateRow{"anHourIsReadInFull", 90000, 2160000, 2160000, 600, 25.0F}),
                         rowName<RateRow>);

TEST(MovieFpsCountingTest, theFirstCallAloneAcceptsAnEdge)
{
    FakeMovie movie(QStringLiteral("/x"));
    movie.length = QTMakeTime(600, 600);
    movie.sampleTimes = {0, 300};
    EXPECT_FLOAT_EQ(movieFps(movie, 0), 2.0F);
    EXPECT_EQ(movie.interestingFlags, QList<int>({0x4010, 0x10, 0x10}));
    EXPECT_EQ(movie.interestingTypes.first(), fourCharCode("vide"));
}

TEST(MovieFpsCountingTest, anMpegStreamCountsWhateverIsSeen)
{
    FakeMovie movie(QStringLiteral("/x"));
    movie.length = QTMakeTime(600, 600);
    movie.sampleTimes = {0};
    EXPECT_FLOAT_EQ(movieFps(movie, 1), 1.0F);
    EXPECT_EQ(movie.interestingTypes.first(), fourCharCode("eyes"));
}

TEST(MovieFpsCountingTest, twoVideoTracksHalveTheRate)
{
    FakeMovie movie(QStringLiteral("/x"));
    movie.length = QTMakeTime(6000, 600);
    for (const char* type : {"vide", "MPEG", "soun"}) {
        movie.addTrack(text(type))->trackRange = QTMakeTimeRange(QTMakeTime(0, 600), QTMakeTime(6000, 600));
    }
    for (int frame = 0; frame < 500; ++frame) {
        movie.sampleTimes.append(frame);
    }
    EXPECT_FLOAT_EQ(movieFps(movie, 0), 25.0F);
}

TEST(MovieFpsQtTest, opensThePath)
{
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("a.mov"));
    FakeLibrary library;
    EXPECT_FLOAT_EQ(movieFpsQt(path, 0), 0.0F);
    const std::shared_ptr<FakeMovie> movie = library.addMovie(path);
    movie->length = QTMakeTime(600, 600);
    movie->sampleTimes = {0, 60, 120};
    EXPECT_FLOAT_EQ(movieFpsQt(path, 0), 3.0F);
    EXPECT_FLOAT_EQ(movieFpsQt(folder.path(QStringLiteral("none.mov")), 0), 0.0F);
}

TEST(QTStringFromTimeTest, isThreePiecesWithMicroseconds)
{
    EXPECT_TEXT(QTStringFromTime(QTMakeTime(6012, 600)), QStringLiteral("0:00:10.020000"));
    EXPECT_TEXT(QTStringFromTime(QTMakeTime(2166000, 600)), QStringLiteral("1:00:10.000000"));
    EXPECT_TEXT(QTStringFromTime(QTMakeTime(-90, 60)), QStringLiteral("-0:00:01.500000"));
    EXPECT_TEXT(QTStringFromTime(QTMakeTime(5, 0)), QStringLiteral("0:00:00.000000"));
    EXPECT_TEXT(QTStringFromTime(QTMakeTime(1001, 30000)), QStringLiteral("0:00:00.033367"));
}

TEST(MediaTimeTest, unitsAreTruncatedAndSaturate)
{
    EXPECT_EQ(truncated64(1499.99), 1499);
    EXPECT_EQ(truncated64(-1.9), -1);
    EXPECT_EQ(truncated64(1e30), std::numeric_limits<qint64>::max());
    EXPECT_EQ(truncated64(-1e30), std::numeric_limits<qint64>::min());
    EXPECT_EQ(truncated64(std::nan("")), 0);
}

TEST(MediaTimeTest, convertsBetweenScalesRoundingToTheNearest)
{
    EXPECT_EQ(valueInScale(QTMakeTime(1, 3), 600), 200);
    EXPECT_EQ(valueInScale(QTMakeTime(1, 3), 10), 3);
    EXPECT_EQ(valueInScale(QTMakeTime(2, 3), 10), 7);
    EXPECT_EQ(valueInScale(QTMakeTime(-2, 3), 10), -7);
    EXPECT_EQ(valueInScale(QTMakeTime(7, 0), 10), 0);
    EXPECT_EQ(QTTimeRangeEnd(QTMakeTimeRange(QTMakeTime(600, 600), QTMakeTime(5, 10))).timeValue, 900);
}

} // namespace tavrix::test
