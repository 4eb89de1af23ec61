// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/clockjumps.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::movencoder;

namespace
{

constexpr int video = 0;
constexpr int sound = 1;
constexpr std::int64_t second = 1'000'000;

struct Packet {
    int stream;
    std::int64_t time;
    std::int64_t duration;
    std::int64_t moved; // the time that is expected
};

struct JumpRow {
    const char* name;
    std::vector<Packet> packets;
};

class ClockJumpsRow : public testing::TestWithParam<JumpRow>
{
};

TEST_P(ClockJumpsRow, MovesAllStreamsAlike)
{
    ClockJumps jumps;
    for (const Packet& packet : GetParam().packets) {
        EXPECT_EQ(packet.time + jumps.offsetOf(packet.stream, packet.time, packet.duration), packet.moved);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ClockJumpsRow,
    testing::Values(
        JumpRow{"Steady", {{video, 0, 40'000, 0}, {sound, -20'000, 32'000, -20'000}, {video, 40'000, 40'000, 40'000}}},
        // Both keep to the clock: neither is moved.
        JumpRow{"SmallStepBack", {{video, 0, 40'000, 0}, {video, 10'000, 40'000, 10'000}}},
        JumpRow{"GapOfSeconds", {{video, 0, 40'000, 0}, {video, 5 * second, 40'000, 5 * second}}},
        // The sound was 10 ms ahead of the picture before the jump and is so after it.
        JumpRow{"Forward",
                {{video, 0, 40'000, 0},
                 {sound, -10'000, 40'000, -10'000},
                 {video, 500 * second, 40'000, 40'000},
                 {sound, 500 * second - 10'000, 40'000, 30'000},
                 {video, 500 * second + 40'000, 40'000, 80'000}}},
        JumpRow{"Backward",
                {{video, 100 * second, 40'000, 100 * second},
                 {sound, 100 * second, 40'000, 100 * second},
                 {video, second, 40'000, 100 * second + 40'000},
                 {sound, second + 5'000, 40'000, 100 * second + 45'000}}},
        // Packets of the old clock follow those of the new one.
        JumpRow{"Interleaved",
                {{video, 100 * second, 40'000, 100 * second},
                 {sound, 100 * second, 40'000, 100 * second},
                 {video, second, 40'000, 100 * second + 40'000},
                 {sound, 100 * second + 40'000, 40'000, 100 * second + 40'000},
                 {sound, second + 40'000, 40'000, 100 * second + 80'000},
                 {video, second + 40'000, 40'000, 100 * second + 80'000}}}),
    [](const testing::TestParamInfo<JumpRow>& row) { return std::string(row.param.name); });

TEST(ClockJumps, PacketWithoutTimeFollowsItsStream)
{
    ClockJumps jumps;
    EXPECT_EQ(jumps.offsetOf(video), 0);
    static_cast<void>(jumps.offsetOf(video, 0, 40'000));
    static_cast<void>(jumps.offsetOf(sound, 0, 40'000));
    static_cast<void>(jumps.offsetOf(video, 500 * second, 40'000));
    EXPECT_EQ(jumps.offsetOf(video), 40'000 - 500 * second);
    EXPECT_EQ(jumps.offsetOf(sound), 0);
}

} // namespace
