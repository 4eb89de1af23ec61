// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/recordingdate.h"

#include "support/qtprinters.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrix::test
{

namespace
{

constexpr std::int64_t hour = 3600;
const SystemTime now{secondsOfClock({2026, 11, 21, 12, 0, 0}), hour};

struct Example {
    const char* name;
    ClipDates clip;
    std::optional<SystemTime> file;
    std::optional<RecordingDate> date;
};

std::int64_t at(const ClockTime& clock)
{
    return secondsOfClock(clock);
}

ClipDates header(const ClockTime& clock, HeaderWriter writer, double length)
{
    ClipDates clip;
    clip.movieHeader = at(clock);
    clip.writer = writer;
    clip.length = length;
    return clip;
}

ClipDates phoneOfApple()
{
    ClipDates clip = header({2011, 9, 25, 10, 10, 7}, HeaderWriter::Phone, 3.49);
    clip.creationDate = WrittenDate{{2011, 9, 25, 12, 9, 54}, 120};
    return clip;
}

ClipDates stream(const ClockTime& clock)
{
    ClipDates clip;
    clip.pictureStream = clock;
    return clip;
}

ClipDates avi(const ClockTime& clock)
{
    ClipDates clip;
    clip.aviDate = WrittenDate{clock, std::nullopt};
    return clip;
}

RecordingDate moment(DateOrigin origin, const ClockTime& utc)
{
    return {origin, true, at(utc)};
}

RecordingDate reading(DateOrigin origin, const ClockTime& clock)
{
    return {origin, false, at(clock)};
}

const SystemTime copiedToday{secondsOfClock({2026, 11, 21, 10, 0, 0}), hour};

} // namespace

class RecordingDates : public testing::TestWithParam<Example>
{
};

TEST_P(RecordingDates, AreChosen)
{
    EXPECT_EQ(recordingDate(GetParam().clip, GetParam().file, now), GetParam().date);
}

// Dates and lengths as found in clips of these cameras and phones, with the dates their files had or lost.
INSTANTIATE_TEST_SUITE_P(
    Clips, RecordingDates,
    testing::Values(
        Example{"AvchdCamera", stream({2021, 1, 17, 17, 33, 17}), copiedToday,
                reading(DateOrigin::PictureStream, {2021, 1, 17, 17, 33, 17})},
        Example{"IPhone4WithZone", phoneOfApple(), copiedToday,
                moment(DateOrigin::CreationDate, {2011, 9, 25, 10, 9, 54})},
        Example{"IPhone6ByItsHeaderAlone", header({2019, 7, 24, 8, 25, 57}, HeaderWriter::Phone, 4), copiedToday,
                moment(DateOrigin::MovieHeader, {2019, 7, 24, 8, 25, 57})},
        Example{"AndroidWithoutDates", header({2017, 1, 5, 18, 32, 43}, HeaderWriter::Phone, 2.38), copiedToday,
                moment(DateOrigin::MovieHeader, {2017, 1, 5, 18, 32, 43})},
        Example{"AndroidWithItsDate", header({2020, 10, 30, 12, 14, 50}, HeaderWriter::Phone, 2.15),
                SystemTime{at({2020, 10, 30, 12, 14, 52}), 9 * hour},
                moment(DateOrigin::MovieHeader, {2020, 10, 30, 12, 14, 50})},
        Example{"CanonMovDownloaded", header({2012, 9, 10, 16, 20, 1}, HeaderWriter::Camera, 12), copiedToday,
                reading(DateOrigin::MovieHeader, {2012, 9, 10, 16, 20, 1})},
        Example{"CanonMovFromTheCard", header({2012, 9, 10, 16, 20, 1}, HeaderWriter::Camera, 12),
                SystemTime{at({2012, 9, 10, 14, 20, 14}), 2 * hour},
                reading(DateOrigin::MovieHeader, {2012, 9, 10, 16, 20, 1})},
        Example{"CameraThatCountsInUtc", header({2018, 5, 1, 9, 0, 0}, HeaderWriter::Camera, 60),
                SystemTime{at({2018, 5, 1, 9, 1, 5}), 2 * hour},
                moment(DateOrigin::MovieHeader, {2018, 5, 1, 9, 0, 0})},
        Example{"PhoneThatCountsInItsOwnTime", header({2008, 6, 7, 20, 0, 0}, HeaderWriter::Phone, 30),
                SystemTime{at({2008, 6, 7, 18, 0, 31}), 2 * hour},
                reading(DateOrigin::MovieHeader, {2008, 6, 7, 20, 0, 0})},
        Example{"LongClipWhoseHeaderTellsItsStart", header({2016, 2, 3, 10, 0, 0}, HeaderWriter::Camera, 1800),
                SystemTime{at({2016, 2, 3, 10, 31, 30}), 5 * hour},
                moment(DateOrigin::MovieHeader, {2016, 2, 3, 10, 0, 0})},
        Example{"JustTooFarFromTheFile", header({2016, 2, 3, 10, 0, 0}, HeaderWriter::Camera, 1800),
                SystemTime{at({2016, 2, 3, 10, 32, 1}), 5 * hour},
                reading(DateOrigin::MovieHeader, {2016, 2, 3, 10, 0, 0})},
        Example{"BothReadingsAgreeOnACamera", header({2016, 2, 3, 10, 0, 0}, HeaderWriter::Camera, 4000),
                SystemTime{at({2016, 2, 3, 10, 0, 0}), hour}, reading(DateOrigin::MovieHeader, {2016, 2, 3, 10, 0, 0})},
        Example{"BothReadingsAgreeOnAPhone", header({2016, 2, 3, 10, 0, 0}, HeaderWriter::Phone, 4000),
                SystemTime{at({2016, 2, 3, 10, 0, 0}), hour}, moment(DateOrigin::MovieHeader, {2016, 2, 3, 10, 0, 0})},
        Example{"GoProWithoutAFileDate", header({2017, 4, 17, 12, 0, 0}, HeaderWriter::Camera, 8), std::nullopt,
                reading(DateOrigin::MovieHeader, {2017, 4, 17, 12, 0, 0})},
        Example{"WrittenAgainByAProgram", header({2013, 9, 16, 20, 38, 44}, HeaderWriter::Program, 14), copiedToday,
                moment(DateOrigin::MovieHeader, {2013, 9, 16, 20, 38, 44})},
        Example{"CanonAvi", avi({2005, 8, 14, 11, 12, 13}), copiedToday,
                reading(DateOrigin::AviDate, {2005, 8, 14, 11, 12, 13})}),
    rowName<Example>);

INSTANTIATE_TEST_SUITE_P(
    Limits, RecordingDates,
    testing::Values(
        Example{"Nothing", ClipDates(), copiedToday, std::nullopt},
        Example{"ClockAtItsFirstDay", stream({1980, 1, 1, 0, 0, 0}), copiedToday, std::nullopt},
        Example{"LastSecondBefore1990", avi({1989, 12, 31, 23, 59, 59}), copiedToday, std::nullopt},
        Example{"FirstSecondOf1990", avi({1990, 1, 1, 0, 0, 0}), copiedToday,
                reading(DateOrigin::AviDate, {1990, 1, 1, 0, 0, 0})},
        Example{"ThisSecondByTheLocalClock", stream({2026, 11, 21, 13, 0, 0}), copiedToday,
                reading(DateOrigin::PictureStream, {2026, 11, 21, 13, 0, 0})},
        Example{"TheNextSecond", stream({2026, 11, 21, 13, 0, 1}), copiedToday, std::nullopt},
        Example{"FarFuture", header({2080, 1, 1, 0, 0, 0}, HeaderWriter::Phone, 5), copiedToday, std::nullopt},
        Example{"HeaderBefore1990", header({1989, 5, 5, 0, 0, 0}, HeaderWriter::Camera, 5), copiedToday, std::nullopt}),
    rowName<Example>);

TEST(RecordingDateOrder, GoesOnWithTheNextDateThatCanBeTrue)
{
    ClipDates clip = phoneOfApple();
    clip.pictureStream = ClockTime{2010, 1, 2, 3, 4, 5};
    clip.aviDate = WrittenDate{{2009, 1, 2, 3, 4, 5}, std::nullopt};
    EXPECT_EQ(recordingDate(clip, copiedToday, now)->origin, DateOrigin::PictureStream);
    clip.pictureStream = ClockTime{1980, 1, 1, 0, 0, 0};
    EXPECT_EQ(recordingDate(clip, copiedToday, now)->origin, DateOrigin::CreationDate);
    clip.creationDate = WrittenDate{{2100, 1, 1, 0, 0, 0}, std::nullopt};
    EXPECT_EQ(recordingDate(clip, copiedToday, now)->origin, DateOrigin::MovieHeader);
    clip.movieHeader = INT64_MIN;
    EXPECT_EQ(recordingDate(clip, copiedToday, now)->origin, DateOrigin::AviDate);
    clip.movieHeader = INT64_MAX;
    EXPECT_EQ(recordingDate(clip, copiedToday, now)->origin, DateOrigin::AviDate);
}

TEST(RecordingDateOrder, ALengthThatIsNoneCountsAsNone)
{
    for (const double length :
         {0.0, -5.0, 1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        const ClipDates clip = header({2016, 2, 3, 10, 0, 0}, HeaderWriter::Camera, length);
        const SystemTime file{at({2016, 2, 3, 10, 1, 0}), 5 * hour};
        EXPECT_EQ(recordingDate(clip, file, now), moment(DateOrigin::MovieHeader, {2016, 2, 3, 10, 0, 0})) << length;
    }
}

} // namespace tavrix::test
