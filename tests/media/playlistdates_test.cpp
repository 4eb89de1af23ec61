// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/playlistdates.h"

#include "support/playlistbuilder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace tavrix
{

namespace
{

using test::PlaylistBuilder;
using test::PlaylistClip;
using Bytes = std::vector<unsigned char>;
using Lines = std::vector<std::string>;

const std::vector<PlaylistClip> twoClips = {
    {.name = "00000", .flags = 1, .thumbnail = 0},
    {.name = "00001", .thumbnail = 1, .date = {0x20, 0x10, 0x12, 0x31, 0x23, 0x59, 0x58}},
};
const Lines twoLines = {"00000 : clip-2010-05-01 12;34;56\n", "00001 : clip-2010-12-31 23;59;58\n"};

Lines linesOf(const Bytes& bytes)
{
    return playlistLines(bytes.data(), bytes.size());
}

// The bytes in a block of exactly their size, so that a sanitizer sees a read behind them.
Lines linesOfExact(const Bytes& bytes, std::size_t size)
{
    const auto exact = std::make_unique<unsigned char[]>(size + 1);
    std::memcpy(exact.get(), bytes.data(), size);
    const Bytes copy(exact.get(), exact.get() + size);
    return linesOf(copy);
}

} // namespace

TEST(ByteSearch, NeverComparesTheLastPosition)
{
    const unsigned char text[] = {'a', 'b', 'c', 'b', 'c'};
    const unsigned char needle[] = {'b', 'c'};
    EXPECT_EQ(_u_strstr(text, needle, 5, 2), text + 1);
    EXPECT_EQ(_u_strstr(text + 2, needle, 3, 2), nullptr);
    EXPECT_EQ(_u_strstr(text + 2, needle, 4, 2), text + 3);
    EXPECT_EQ(_u_strstr(needle, needle, 2, 2), nullptr);
    EXPECT_EQ(_u_strstr(needle, text, 2, 5), nullptr);
    EXPECT_EQ(_u_strstr(text, needle, 5, 0), nullptr);
    EXPECT_EQ(_u_strstr(nullptr, needle, 0, 2), nullptr);
}

TEST(PlaylistDates, MarkerScanReadsCamerasWithoutAZone)
{
    const Bytes bytes = PlaylistBuilder(test::zoneUnset).build(twoClips);
    EXPECT_EQ(playlistLinesByMarker(bytes.data(), bytes.size()), twoLines);
    EXPECT_EQ(linesOf(bytes), twoLines);
}

TEST(PlaylistDates, StructureReadsCamerasWithAZone)
{
    for (const unsigned char zone : {test::zoneNewYork, test::zoneTokyo}) {
        const Bytes bytes = PlaylistBuilder(zone).build(twoClips);
        EXPECT_TRUE(playlistLinesByMarker(bytes.data(), bytes.size()).empty());
        EXPECT_EQ(linesOf(bytes), twoLines);
    }
}

TEST(PlaylistDates, StructureAgreesWithTheMarkerScan)
{
    const Bytes bytes = PlaylistBuilder(test::zoneUnset).build(twoClips);
    EXPECT_EQ(playlistLinesByStructure(bytes.data(), bytes.size()), twoLines);
}

TEST(PlaylistDates, ClipNumberIsTheNumberOfTwoBytes)
{
    const Bytes bytes = {0xFF, 0xFF, 0x1E, 0x20, 0x99, 123, 45, 0x1E, 0x20, 0x11, 0x03, 0x04, 0x10, 0x20, 0x30, 0, 0};
    EXPECT_EQ(linesOf(bytes), Lines{"12345 : clip-2011-03-04 10;20;30\n"});
}

TEST(PlaylistDates, MarkersBytesAreNotTheFirstDate)
{
    const Bytes bytes = {0xFF, 0xFF, 0x1E, 0x20, 0x10, 0x05, 0x01, 0x12, 0x34, 0x56, 0, 0};
    EXPECT_TRUE(linesOf(bytes).empty());
}

TEST(PlaylistDates, DateBehindTheEndIsLeftOut)
{
    const Bytes whole = {0xFF, 0xFF, 0x1E, 0x20, 0, 1, 0x1E, 0x20, 0x11, 0x03, 0x04, 0x10, 0x20, 0x30};
    EXPECT_EQ(linesOf(whole).size(), 1U);
    const Bytes cut(whole.begin(), whole.end() - 1);
    EXPECT_TRUE(linesOf(cut).empty());
}

TEST(PlaylistDates, ContinuationInheritsTheDate)
{
    const Bytes bytes = PlaylistBuilder(test::zoneTokyo)
                            .build({{.name = "00007", .flags = 1},
                                    {.name = "00008", .flags = 6, .marked = false},
                                    {.name = "00009", .date = {0x20, 0x11, 0x01, 0x02, 0x03, 0x04, 0x05}}});
    const Lines expected = {"00007 : clip-2010-05-01 12;34;56\n", "00008 : clip-2010-05-01 12;34;56\n",
                            "00009 : clip-2011-01-02 03;04;05\n"};
    EXPECT_EQ(linesOf(bytes), expected);
}

TEST(PlaylistDates, ClipWithoutMarkHasNoLine)
{
    const Bytes bytes = PlaylistBuilder(test::zoneTokyo)
                            .build({{.name = "00007", .flags = 1}, {.name = "00008", .flags = 5, .marked = false}});
    EXPECT_EQ(linesOf(bytes), Lines{"00007 : clip-2010-05-01 12;34;56\n"});
}

TEST(PlaylistDates, StructureTakesTheNumberFromTheNameAndTheCenturyFromTheDate)
{
    const Bytes bytes =
        PlaylistBuilder(test::zoneTokyo)
            .build({{.name = "01234", .thumbnail = 0xFFFF, .date = {0x19, 0x99, 0x12, 0x31, 0x00, 0x00, 0x00}}});
    EXPECT_EQ(linesOf(bytes), Lines{"01234 : clip-1999-12-31 00;00;00\n"});
}

TEST(PlaylistDates, StructureRefusesNamesAndDatesThatAreNone)
{
    for (const std::array<unsigned char, 7>& date : {std::array<unsigned char, 7>{0x20, 0x10, 0x13, 0x01, 0, 0, 0},
                                                     {0x20, 0x10, 0x00, 0x01, 0, 0, 0},
                                                     {0x20, 0x10, 0x01, 0x32, 0, 0, 0},
                                                     {0x20, 0x10, 0x01, 0x01, 0x24, 0, 0},
                                                     {0x20, 0x1A, 0x01, 0x01, 0, 0, 0},
                                                     {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}) {
        const Bytes bytes = PlaylistBuilder(test::zoneTokyo).build({{.name = "00001", .date = date}});
        EXPECT_TRUE(linesOf(bytes).empty());
    }
    EXPECT_TRUE(linesOf(PlaylistBuilder(test::zoneTokyo).build({{.name = "0;0'1"}})).empty());
}

TEST(PlaylistDates, DamagedBytesNeverFault)
{
    for (const unsigned char zone : {test::zoneUnset, test::zoneTokyo}) {
        const Bytes whole = PlaylistBuilder(zone).build(twoClips);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_LE(linesOfExact(whole, size).size(), 2U) << size;
        }
        // Every byte of the header and the tables set to its largest value.
        for (std::size_t i = 0; i < whole.size(); ++i) {
            Bytes damaged = whole;
            damaged[i] = 0xFF;
            EXPECT_LE(linesOf(damaged).size(), 3U) << i;
        }
    }
    EXPECT_TRUE(playlistLines(nullptr, 0).empty());
}

} // namespace tavrix
