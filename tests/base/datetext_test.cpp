// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/datetext.h"

#include "base/files/fileops.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFileInfo>

#include <ctime>
#include <limits>

namespace tavrix
{

namespace
{

struct ReadingRow {
    const char* name;
    const char* zone;
    qint64 reading;
    qint64 seconds;
    const char* text;
};

constexpr qint64 noon = 1341144000; // 2012-07-01 12:00:00 as if in UTC

} // namespace

class LocalReadings : public testing::TestWithParam<ReadingRow>
{
};

TEST_P(LocalReadings, AreTimesOfThisZone)
{
    {
        const test::EnvironmentChange zone("TZ", GetParam().zone);
        tzset();
        EXPECT_EQ(secondsOfLocalReading(GetParam().reading), GetParam().seconds);
        EXPECT_TEXT(readingText(GetParam().reading), test::text(GetParam().text));
    }
    tzset();
}

INSTANTIATE_TEST_SUITE_P(Zones, LocalReadings,
                         testing::Values(ReadingRow{"Utc", "UTC0", noon, noon, "2012-07-01 12:00:00 +0000"},
                                         ReadingRow{"SummerTime", "CET-1CEST,M3.5.0,M10.5.0/3", noon, noon - 7200,
                                                    "2012-07-01 12:00:00 +0200"},
                                         ReadingRow{"WinterTime", "CET-1CEST,M3.5.0,M10.5.0/3", noon + 184 * 86400,
                                                    noon + 184 * 86400 - 3600, "2013-01-01 12:00:00 +0100"},
                                         ReadingRow{"West", "EST5", noon, noon + 18000, "2012-07-01 12:00:00 -0500"},
                                         ReadingRow{"HalfHours", "IST-5:30", noon, noon - 19800,
                                                    "2012-07-01 12:00:00 +0530"}),
                         test::rowName<ReadingRow>);

TEST(LocalReading, InTheHourThatSummerTimeLeavesOutKeepsItsFigures)
{
    {
        const test::EnvironmentChange zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        tzset();
        // 2012-03-25 02:30:00 was shown by no clock that follows the law.
        constexpr qint64 leftOut = 1332642600;
        EXPECT_TRUE(readingText(leftOut).startsWith(QStringLiteral("2012-03-25 02:30:00 +0")));
        EXPECT_LE(std::abs(secondsOfLocalReading(leftOut) - (leftOut - 3600)), 3600);
    }
    tzset();
}

TEST(LocalReading, OutsideOfAnyCalendarIsNoText)
{
    EXPECT_TEXT(readingText(std::numeric_limits<qint64>::max()), QString());
    EXPECT_TEXT(dateText(std::numeric_limits<qint64>::max()), QString());
    EXPECT_EQ(secondsAheadOfUtc(std::numeric_limits<qint64>::max()), 0);
}

TEST(FileDate, IsSetOnRegularFilesOnly)
{
    const test::TempFolder folder;
    const test::LogCapture log;
    const QString file = folder.makeFile(QStringLiteral("clip.mov"), "x");
    EXPECT_TRUE(setModificationTime(file, noon));
    EXPECT_EQ(QFileInfo(file).lastModified().toSecsSinceEpoch(), noon);
    EXPECT_EQ(creationSeconds(file), noon);
    ASSERT_TRUE(QFile::link(file, folder.path(QStringLiteral("link"))));
    EXPECT_FALSE(setModificationTime(folder.path(QStringLiteral("link")), noon + 1));
    EXPECT_FALSE(setModificationTime(folder.path(QString()), noon + 1));
    EXPECT_FALSE(setModificationTime(folder.path(QStringLiteral("missing")), noon + 1));
    EXPECT_EQ(QFileInfo(file).lastModified().toSecsSinceEpoch(), noon);
    EXPECT_EQ(log.lines().filter(QStringLiteral("file date           :-( ")).size(), 3);
    EXPECT_FALSE(creationSeconds(folder.path(QStringLiteral("missing"))));
}

} // namespace tavrix
