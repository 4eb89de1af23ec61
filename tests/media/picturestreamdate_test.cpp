// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/picturestreamdate.h"

#include "support/qtprinters.h"
#include "support_media/cameramessage.h"

#include <gtest/gtest.h>

namespace tavrix::test
{

using namespace built;

namespace
{

struct MessageRow {
    const char* name;
    Bytes tags; // behind the mark: a count and the tags
    std::optional<ClockTime> date;
};

constexpr ClockTime recorded{2021, 1, 17, 17, 33, 17};

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace

class CameraMessages : public testing::TestWithParam<MessageRow>
{
};

TEST_P(CameraMessages, TellTheDate)
{
    EXPECT_EQ(userDataDate(cameraMark() + GetParam().tags), GetParam().date);
}

INSTANTIATE_TEST_SUITE_P(
    Tags, CameraMessages,
    testing::Values(
        MessageRow{"Panasonic",
                   {4,    0x13, 0x13, 0x31, 0x34, 0x20, 0x18, 0x0B, 0x20, 0x21, 0x01,
                    0x19, 0x17, 0x17, 0x33, 0x17, 0x70, 0xCB, 0x01, 0x1F, 0xFF},
                   recorded},
        MessageRow{"ZoneNeverSet", {2, 0x18, 0x1E, 0x20, 0x21, 0x01, 0x19, 0x17, 0x17, 0x33, 0x17}, recorded},
        MessageRow{"ClockNeverSet", {2, 0x18, 0xFF, 0xFF, 0xFF, 0xFF, 0x19, 0xFF, 0xFF, 0xFF, 0xFF}, {}},
        MessageRow{"Zeros", {2, 0x18, 0, 0, 0, 0, 0x19, 0, 0, 0, 0}, {}},
        MessageRow{"NoSuchDay", {2, 0x18, 0, 0x20, 0x21, 0x02, 0x19, 0x30, 0x17, 0x33, 0x17}, {}},
        MessageRow{"DayWithoutTime", {1, 0x18, 0, 0x20, 0x21, 0x01}, {}},
        MessageRow{"TimeBehindTheCount", {1, 0x18, 0, 0x20, 0x21, 0x01, 0x19, 0x17, 0x17, 0x33, 0x17}, {}},
        MessageRow{"CutOff", {2, 0x18, 0, 0x20, 0x21, 0x01, 0x19, 0x17, 0x17, 0x33}, {}},
        MessageRow{"CountTooLarge", {255, 0x18, 0, 0x20, 0x21, 0x01, 0x19, 0x17, 0x17, 0x33, 0x17}, recorded},
        MessageRow{"NoTags", {0}, {}}, MessageRow{"NoCount", {}, {}}),
    rowName<MessageRow>);

TEST(CameraMessage, OfOtherUsersIsPassedOver)
{
    Bytes other = cameraMessage(recorded);
    other[0] ^= 1U;
    EXPECT_FALSE(userDataDate(other));
    EXPECT_FALSE(userDataDate(ByteView()));
    EXPECT_FALSE(userDataDate(ByteView(other).first(5)));
}

TEST(SupplementalUnit, HoldsSeveralMessages)
{
    EXPECT_EQ(nalUnitDate(supplementalUnit(cameraMessage(recorded))), recorded);
    // A picture's timing, an encoder's remark of 300 bytes, then the camera's.
    const Bytes remark = Bytes{5, 255, 45} + Bytes(300, 'x');
    const Bytes camera = supplementalUnit(cameraMessage(recorded));
    const Bytes several = Bytes{6, 1, 2, 7, 7} + remark + Bytes(camera.begin() + 1, camera.end());
    EXPECT_EQ(nalUnitDate(several), recorded);
    Bytes picture = camera;
    picture[0] = 5;
    EXPECT_FALSE(nalUnitDate(picture));
    EXPECT_FALSE(nalUnitDate(ByteView()));
    EXPECT_FALSE(nalUnitDate(Bytes{6, 255, 255, 255}));
    EXPECT_FALSE(nalUnitDate(Bytes{6, 5}));
}

TEST(SupplementalUnit, LosesTheGuardsAgainstStartCodes)
{
    // Midnight of the first day of the year 2000: zeros follow one another, and a guard stands among them.
    const ClockTime midnight{2000, 1, 1, 0, 0, 0};
    const Bytes unit = supplementalUnit(cameraMessage(midnight));
    const std::array<std::uint8_t, 3> guard{0, 0, 3};
    ASSERT_NE(std::search(unit.begin(), unit.end(), guard.begin(), guard.end()), unit.end());
    EXPECT_EQ(nalUnitDate(unit), midnight);
}

TEST(PictureStream, IsSearchedForItsFirstDate)
{
    const Bytes unit = supplementalUnit(cameraMessage(recorded));
    const Bytes later = supplementalUnit(cameraMessage({2022, 1, 1, 1, 1, 1}));
    const Bytes code{0, 0, 0, 1};
    EXPECT_EQ(startCodeStreamDate(Bytes(50, 0x55) + code + Bytes{9, 0x30} + code + unit + code + later), recorded);
    EXPECT_FALSE(startCodeStreamDate(unit));
    EXPECT_FALSE(startCodeStreamDate(ByteView()));
    EXPECT_FALSE(startCodeStreamDate(Bytes{0, 0, 1}));
}

TEST(MovieSample, IsReadUnitByUnit)
{
    const Bytes unit = supplementalUnit(cameraMessage(recorded));
    const auto size = static_cast<std::uint8_t>(unit.size());
    EXPECT_EQ(sampleDate(Bytes{0, 0, 0, 2, 9, 0x30, 0, 0, 0, size} + unit, 4), recorded);
    EXPECT_EQ(sampleDate(Bytes{0, 2, 9, 0x30, 0, size} + unit, 2), recorded);
    EXPECT_EQ(sampleDate(Bytes{2, 9, 0x30, size} + unit, 1), recorded);
    EXPECT_FALSE(sampleDate(Bytes{0, 0, 0, size} + unit, 3));
    EXPECT_FALSE(sampleDate(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 9}, 4));
    EXPECT_FALSE(sampleDate(Bytes{0, 0, 0, 0, 0, 0, 0}, 4));
    EXPECT_FALSE(sampleDate(ByteView(), 4));
}

TEST(TransportStream, IsReadFromItsPackets)
{
    for (const std::size_t length : {std::size_t{188}, std::size_t{192}}) {
        const Bytes stream = cameraStream(recorded, length);
        EXPECT_TRUE(isTransportStream(stream));
        EXPECT_EQ(transportStreamDate(stream), recorded);
        // The message lies in two packets: without the second one its end is missing.
        EXPECT_FALSE(transportStreamDate(ByteView(stream).first(length * 2)));
    }
}

TEST(TransportStream, OfOtherBytesGivesNone)
{
    EXPECT_FALSE(isTransportStream(ByteView()));
    EXPECT_FALSE(transportStreamDate(Bytes(5000, 0x47 - 1)));
    // Sync bytes everywhere: packets, none of which begins a picture.
    EXPECT_FALSE(transportStreamDate(Bytes(50000, 0x47)));
    Bytes scrambled = cameraStream(recorded, 188);
    for (std::size_t packet = 0; packet < scrambled.size(); packet += 188) {
        scrambled[packet + 3] |= 0x80U;
    }
    EXPECT_TRUE(isTransportStream(scrambled));
    EXPECT_FALSE(transportStreamDate(scrambled));
}

} // namespace tavrix::test
