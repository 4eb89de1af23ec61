// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/soundoffsets.h"

#include "support/qtprinters.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// Two sound streams; the first starts 40 ms after the picture, the second with it.
const char* const twoSounds = "Input #0, mpegts, from 'a.mts':\n"
                              "  Duration: 00:00:06.01, start: 1.400000, bitrate: 8609 kb/s\n"
                              "    Stream #0.0[0x1011], 10, 1/90000: Video: h264, yuv420p, 1280x720, 50 tbr\n"
                              "    Stream #0.1[0x1100], 10, 1/90000: Audio: ac3, 48000 Hz, stereo\n"
                              "    Stream #0.2[0x1101], 10, 1/90000: Audio: ac3, 48000 Hz, stereo\n"
                              "[x] av_read_frame_internal stream=0, pts=126000, dts=126000, size=9\n"
                              "[x] av_read_frame_internal stream=1, pts=129600, dts=129600, size=9\n"
                              "[x] av_read_frame_internal stream=2, pts=126000, dts=126000, size=9\n";

TEST(SoundOffsets, CountUpToTwentyMillisecondsAsNone)
{
    EXPECT_EQ(noticedOffset(20), 0);
    EXPECT_EQ(noticedOffset(-20), 0);
    EXPECT_EQ(noticedOffset(21), 21);
    EXPECT_EQ(noticedOffset(-21), -21);
}

struct AgreeRow {
    const char* name;
    SoundOffset offset;
    std::optional<bool> agree;
};

class OffsetsAgree : public testing::TestWithParam<AgreeRow>
{
};

TEST_P(OffsetsAgree, WithinWhatIsNotNoticed)
{
    EXPECT_EQ(offsetsAgree(GetParam().offset), GetParam().agree);
}

INSTANTIATE_TEST_SUITE_P(Rows, OffsetsAgree,
                         testing::Values(AgreeRow{"same", {100, 100}, true}, AgreeRow{"near", {100, 81}, true},
                                         AgreeRow{"apart", {100, 79}, false}, AgreeRow{"bothSmall", {-19, 20}, true},
                                         AgreeRow{"oneSmall", {20, 40}, false}, AgreeRow{"opposite", {-50, 50}, false},
                                         AgreeRow{"unknown", {std::nullopt, 50}, std::nullopt},
                                         AgreeRow{"nothing", {}, std::nullopt}),
                         rowName<AgreeRow>);

TEST(SoundOffsets, OfTheTranscriptBelongToTheStreamsInOrder)
{
    const QList<SoundOffset> offsets = soundOffsets(2, QString::fromLatin1(twoSounds), nullptr);
    ASSERT_EQ(offsets.size(), 2);
    EXPECT_EQ(offsets.at(0).byTimeStamps, 40);
    EXPECT_EQ(offsets.at(1).byTimeStamps, 0);
    EXPECT_FALSE(offsets.at(0).byTrackRanges.has_value());
}

TEST(SoundOffsets, AreUnknownWhereAStreamHasNoPackets)
{
    const QList<SoundOffset> offsets = soundOffsets(3, QString::fromLatin1(twoSounds), nullptr);
    ASSERT_EQ(offsets.size(), 3);
    EXPECT_FALSE(offsets.at(0).byTimeStamps.has_value());
}

} // namespace
