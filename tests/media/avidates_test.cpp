// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/avidates.h"

#include "media/clipdates.h"
#include "support/qtprinters.h"
#include "support_media/builtdates.h"

#include <gtest/gtest.h>

namespace tavrix::test
{

using namespace built;

namespace
{

struct AviRow {
    const char* name;
    Bytes file;
    std::optional<ClockTime> clock;
};

constexpr ClockTime recorded{2012, 9, 10, 16, 20, 1};

Bytes dateChunk(const std::string& text = "Mon Sep 10 16:20:01 2012\n")
{
    return chunk("IDIT", joined({bytesOf(text), {0}}));
}

Bytes headerList(const std::vector<Bytes>& more)
{
    return list("hdrl", {chunk("avih", Bytes(56, 0)), joined(more)});
}

Bytes pictures()
{
    return list("movi", {chunk("00dc", Bytes(5001, 0x49))});
}

// Two tags, the second of which tells the date.
Bytes nikonTags(const std::string& date)
{
    const auto size = static_cast<std::uint8_t>(date.size());
    return joined({{0x03, 0, 5, 0}, bytesOf("NIKON"), {0x13, 0, size, 0}, bytesOf(date)});
}

Bytes exif(const std::string& date)
{
    return joined({bytesOf("AVIF"), Bytes(20, 0), bytesOf(date), {0}});
}

} // namespace

class AviDates : public testing::TestWithParam<AviRow>
{
};

TEST_P(AviDates, AreFound)
{
    const Bytes& file = GetParam().file;
    const ClipDates dates = clipDates(readAtOf(ByteView(file)), file.size());
    EXPECT_EQ(dates.aviDate.has_value(), GetParam().clock.has_value());
    if (dates.aviDate && GetParam().clock) {
        EXPECT_EQ(dates.aviDate->clock, *GetParam().clock);
    }
    EXPECT_FALSE(dates.movieHeader || dates.creationDate || dates.pictureStream);
}

INSTANTIATE_TEST_SUITE_P(
    Files, AviDates,
    testing::Values(
        AviRow{"Canon", aviFile({headerList({dateChunk()}), pictures()}), recorded},
        AviRow{"BehindTheLists", aviFile({headerList({}), dateChunk(), pictures()}), recorded},
        AviRow{"BehindThePictures", aviFile({headerList({}), pictures(), chunk("idx1", Bytes(16, 0)), dateChunk()}),
               recorded},
        AviRow{"Slashes", aviFile({headerList({dateChunk("2012/09/10 16:20:01")})}), recorded},
        AviRow{"ExifOfAStream",
               aviFile({headerList({list("strl",
                                         {chunk("strh", Bytes(56, 0)), chunk("strd", exif("2012:09:10 16:20:01"))})})}),
               recorded},
        AviRow{"Nikon", aviFile({headerList({}), list("ncdt", {chunk("nctg", nikonTags("2012:09:10 16:20:01"))})}),
               recorded},
        AviRow{"Information", aviFile({headerList({}), list("INFO", {chunk("ICRD", bytesOf("2012-09-10 16:20:01"))})}),
               recorded},
        AviRow{"TheDateChunkCountsFirst",
               aviFile({list("INFO", {chunk("ICRD", bytesOf("2001-01-01 01:01:01"))}), headerList({dateChunk()})}),
               recorded},
        AviRow{"UnreadableDateChunk",
               aviFile({headerList({dateChunk("unknown"), chunk("strd", exif("2012:09:10 16:20:01"))})}), recorded},
        AviRow{"DayAlone", aviFile({headerList({}), list("INFO", {chunk("ICRD", bytesOf("2012-09-10"))})}), {}},
        AviRow{"None", aviFile({headerList({}), pictures()}), {}},
        AviRow{"DateAmongPictures", aviFile({headerList({}), list("movi", {dateChunk()})}), {}},
        AviRow{"NikonsTagCutOff", aviFile({list("ncdt", {chunk("nctg", {0x13, 0, 19, 0, '2', '0', '1'})})}), {}},
        AviRow{"SizeBeyondTheFile",
               joined({bytesOf("RIFF"), Bytes(4, 0xFF), bytesOf("AVI LIST"), Bytes(4, 0xFF), bytesOf("hdrl")}),
               {}}),
    rowName<AviRow>);

TEST(AviDate, OfAFileCutAnywhereDoesNoHarm)
{
    const Bytes file = aviFile({headerList({list("strl", {chunk("strd", exif("2012:09:10 16:20:01"))}), dateChunk()})});
    for (std::size_t length = 0; length < file.size(); ++length) {
        const ClipDates dates = clipDates(readAtOf(ByteView(file).first(length)), length);
        EXPECT_TRUE(!dates.aviDate || dates.aviDate->clock == recorded) << length;
    }
}

TEST(AviDate, ListsWithinListsEndSomewhere)
{
    Bytes nested = dateChunk();
    for (int i = 0; i < 2000; ++i) {
        nested = list("strl", {nested});
    }
    const Bytes file = aviFile({nested});
    EXPECT_FALSE(clipDates(readAtOf(ByteView(file)), file.size()).aviDate);
}

TEST(AviDate, PicturesAreNotRead)
{
    const Bytes file = aviFile({headerList({dateChunk()}), pictures()});
    std::uint64_t bytesRead = 0;
    const ReadAt counted = [&](std::uint64_t offset, std::span<std::uint8_t> to) {
        bytesRead += to.size();
        return readAtOf(ByteView(file))(offset, to);
    };
    EXPECT_TRUE(clipDates(counted, file.size()).aviDate);
    EXPECT_LT(bytesRead, 1000U);
}

} // namespace tavrix::test
