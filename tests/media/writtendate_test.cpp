// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/writtendate.h"

#include "support/qtprinters.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrix::test
{

namespace
{

struct SpellingRow {
    const char* name;
    std::string text;
    ClockTime clock;
    std::optional<int> zoneMinutes = std::nullopt;
};

struct NoDateRow {
    const char* name;
    std::string text;
};

} // namespace

class DateSpellings : public testing::TestWithParam<SpellingRow>
{
};

TEST_P(DateSpellings, AreRead)
{
    const std::optional<WrittenDate> date = writtenDate(GetParam().text);
    ASSERT_TRUE(date);
    EXPECT_EQ(date->clock, GetParam().clock);
    EXPECT_EQ(date->zoneMinutes, GetParam().zoneMinutes);
}

INSTANTIATE_TEST_SUITE_P(
    Spellings, DateSpellings,
    testing::Values(
        SpellingRow{"CanonAvi", "Mon Sep 10 15:04:43 2012\n", {2012, 9, 10, 15, 4, 43}},
        SpellingRow{"CanonAviWithNul", std::string("MON JAN 02 15:04:05 2012\n\0", 26), {2012, 1, 2, 15, 4, 5}},
        SpellingRow{"DayOfOneDigit", "Sun Mar  4 09:08:07 2007", {2007, 3, 4, 9, 8, 7}},
        SpellingRow{"Exif", "2012:01:02 15:04:05", {2012, 1, 2, 15, 4, 5}},
        SpellingRow{"Slashes", "2012/01/02 15:04", {2012, 1, 2, 15, 4, 0}},
        SpellingRow{"BlanksForZeros", "2001/ 1/27  1:42PM", {2001, 1, 27, 13, 42, 0}},
        SpellingRow{"SlashBehindTheDay", "2005/11/28/ 09:19", {2005, 11, 28, 9, 19, 0}},
        SpellingRow{"HyphensAndNuls", std::string("2002-12-16  15:35:01\0\0", 22), {2002, 12, 16, 15, 35, 1}},
        SpellingRow{"Noon", "2001/01/27 12:05 PM", {2001, 1, 27, 12, 5, 0}},
        SpellingRow{"Midnight", "2001/01/27 12:05am", {2001, 1, 27, 0, 5, 0}},
        SpellingRow{"AppleWithZone", "2011-09-25T12:09:54+0200", {2011, 9, 25, 12, 9, 54}, 120},
        SpellingRow{"WestOfGreenwich", "2011-09-25T12:09:54-03:30", {2011, 9, 25, 12, 9, 54}, -210},
        SpellingRow{"ZoneOfHours", "2011-09-25 12:09:54 +09", {2011, 9, 25, 12, 9, 54}, 540},
        SpellingRow{"Fraction", "2011-09-25T12:09:54.250Z", {2011, 9, 25, 12, 9, 54}, 0},
        SpellingRow{"NamedZone", "2011-09-25 12:09:54 UTC", {2011, 9, 25, 12, 9, 54}, 0},
        SpellingRow{"Compact", "20171127T213543.000Z", {2017, 11, 27, 21, 35, 43}, 0},
        SpellingRow{"CompactWithoutZone", "20171127 213543", {2017, 11, 27, 21, 35, 43}},
        SpellingRow{"Mail", "Mon, 02 Jan 2012 15:04:05 +0100", {2012, 1, 2, 15, 4, 5}, 60},
        SpellingRow{"NameOfAZone", "Mon Jan 02 15:04:05 CET 2012", {2012, 1, 2, 15, 4, 5}},
        SpellingRow{"LeapDay", "2012-02-29 00:00:00", {2012, 2, 29, 0, 0, 0}}),
    rowName<SpellingRow>);

class NoDates : public testing::TestWithParam<NoDateRow>
{
};

TEST_P(NoDates, GiveNone)
{
    EXPECT_FALSE(writtenDate(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NoDates,
    testing::Values(NoDateRow{"Empty", ""}, NoDateRow{"Blanks", "   "}, NoDateRow{"Words", "no date"},
                    NoDateRow{"NeverSet", "0000:00:00 00:00:00"}, NoDateRow{"MonthThirteen", "2012:13:01 10:00:00"},
                    NoDateRow{"NoSuchDay", "2011-02-29 10:00:00"}, NoDateRow{"HourTwentyFour", "2012-01-02 24:00:00"},
                    NoDateRow{"MinuteSixty", "2012-01-02 10:60:00"}, NoDateRow{"DayAlone", "2012-01-02"},
                    NoDateRow{"YearAlone", "2012"}, NoDateRow{"TimeAlone", "10:11:12"},
                    NoDateRow{"NamedDayWithoutTime", "Mon Jan 02 2012"},
                    NoDateRow{"Rest", "2012-01-02 10:11:12 and more"},
                    NoDateRow{"ZoneOutside", "2012-01-02 10:11:12+1500"},
                    NoDateRow{"HalfAZone", "2012-01-02 10:11:12+0"}, NoDateRow{"ThirteenPm", "2001/01/27 13:05PM"},
                    NoDateRow{"TwoYears", "Jan 02 15:04:05 2012 2013"}, NoDateRow{"LongNumber", "99999999999999999999"},
                    NoDateRow{"Colons", ":::: ::::"}, NoDateRow{"CutOff", "2012-01-02 10:1x"},
                    NoDateRow{"HighBytes", "\xFF\xFE\xFD:\x80"}),
    rowName<NoDateRow>);

TEST(ExifDates, AreFoundAmongOtherBytes)
{
    const std::string bytes = std::string("AVIF\0\0II*\0", 10) + "2012:99:99 00:00:00" + std::string(7, '\0') +
                              "2009:07:04 18:30:59" + std::string(3, '\0') + "2010:01:01 00:00:00";
    const std::optional<WrittenDate> date = firstExifDate(bytes);
    ASSERT_TRUE(date);
    EXPECT_EQ(date->clock, (ClockTime{2009, 7, 4, 18, 30, 59}));
    EXPECT_FALSE(date->zoneMinutes);
    EXPECT_FALSE(firstExifDate("2009:07:04 18:30:5"));
    EXPECT_FALSE(firstExifDate(""));
}

TEST(ClockSeconds, GoBothWays)
{
    EXPECT_EQ(secondsOfClock({1970, 1, 1, 0, 0, 0}), 0);
    EXPECT_EQ(secondsOfClock({2011, 3, 4, 9, 20, 30}), 1299230430);
    EXPECT_EQ(clockOfSeconds(1299230430), (ClockTime{2011, 3, 4, 9, 20, 30}));
    EXPECT_EQ(clockOfSeconds(-1), (ClockTime{1969, 12, 31, 23, 59, 59}));
    EXPECT_EQ(clockOfSeconds(INT64_MAX), (ClockTime{9999, 12, 31, 23, 59, 59}));
    EXPECT_EQ(clockOfSeconds(INT64_MIN), (ClockTime{1, 1, 1, 0, 0, 0}));
}

} // namespace tavrix::test
