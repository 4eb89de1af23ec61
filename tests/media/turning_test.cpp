// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/turning.h"

#include <gtest/gtest.h>

namespace tavrix::media
{
namespace
{

constexpr std::int32_t one = 65536;

TEST(Turning, OfTheEightPlacesOfAPicture)
{
    struct Row {
        std::int32_t a, b, c, d;
        Turning turning;
    };
    const Row rows[] = {
        {one, 0, 0, one, {0, false}},    {0, one, -one, 0, {90, false}}, {-one, 0, 0, -one, {180, false}},
        {0, -one, one, 0, {270, false}}, {-one, 0, 0, one, {0, true}},   {one, 0, 0, -one, {180, true}},
        {0, -one, -one, 0, {90, true}},  {0, one, one, 0, {270, true}},  {one / 2, 0, 0, one / 2, {0, false}},
        {0, 0, 0, 0, {0, false}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.a << ' ' << row.b << ' ' << row.c << ' ' << row.d);
        EXPECT_EQ(turningOf(row.a, row.b, row.c, row.d), row.turning);
    }
}

// Where the picture's left upper corner goes says the same as the numbers.
TEST(Turning, MirrorsBeforeItTurns)
{
    // Mirrored, then turned by 90 degrees clockwise: what lay to the right goes up, what lay below goes to the left.
    const Turning turning = turningOf(0, -one, -one, 0);
    EXPECT_TRUE(turning.mirrored);
    EXPECT_EQ(turning.degrees, 90);
    EXPECT_TRUE(turning.swapsSides());
}

} // namespace
} // namespace tavrix::media
