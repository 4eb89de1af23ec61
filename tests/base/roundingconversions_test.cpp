// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/roundingconversions.h"

#include "base/store/settings.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <cmath>
#include <limits>
#include <vector>

namespace tavrix
{
namespace
{

using test::text;

struct RoundRow {
    float x;
    int decimals;
    float expected;
};

TEST(Rounding, NbTrimmedCutsTowardZero)
{
    const std::vector<RoundRow> rows = {{2.9F, 0, 2},         {-2.9F, 0, -2},  {29.97F, 2, 29.97F}, {1.239F, 2, 1.23F},
                                        {-1.239F, 2, -1.23F}, {1.0F, 3, 1.0F}, {12.5F, -1, 12.0F},  {1e38F, 3, 1e38F}};
    for (const RoundRow& row : rows) {
        EXPECT_FLOAT_EQ(nbTrimmed(row.x, row.decimals), row.expected) << row.x << ", " << row.decimals;
    }
}

// The product is a 32-bit number: with more bits many of these would lose their last hundredth.
TEST(Rounding, NbTrimmedKeepsTheHundredthsItIsGiven)
{
    int lost = 0;
    for (int k = 0; k < 400; ++k) {
        const float x = static_cast<float>(k) / 100.0F;
        lost += nbTrimmed(x, 2) != std::trunc(x * 100.0F) / 100.0F ? 1 : 0;
    }
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(nbTrimmed(29.97F, 2), 29.97F);
}

TEST(Rounding, NbArrondi)
{
    const std::vector<RoundRow> rows = {{2.5F, 0, 3},     {-2.5F, 0, -2},     {-2.7F, 0, -2},
                                        {2.4F, 0, 2},     {-2.46F, 1, -2.5F}, {2.449F, 2, 2.45F},
                                        {0.25F, 1, 0.3F}, {-0.25F, 1, -0.3F}, {1e38F, 3, 1e38F}};
    for (const RoundRow& row : rows) {
        EXPECT_FLOAT_EQ(nbArrondi(row.x, row.decimals), row.expected) << row.x << ", " << row.decimals;
    }
}

TEST(Rounding, AZeroHasNoSign)
{
    EXPECT_FALSE(std::signbit(nbArrondi(-0.4F, 0)));
    EXPECT_FALSE(std::signbit(nbArrondi(-0.6F, 0)));
    EXPECT_FALSE(std::signbit(nbArrondi(-0.04F, 1)));
    EXPECT_FALSE(std::signbit(nbTrimmed(-0.4F, 0)));
    EXPECT_FALSE(std::signbit(nbTrimmed(-0.04F, 1)));
}

TEST(Rounding, Multiples)
{
    EXPECT_TRUE(nbMultiple(16, 8));
    EXPECT_FALSE(nbMultiple(17, 8));
    EXPECT_TRUE(nbMultiple(0, 8));
    EXPECT_TRUE(nbMultiple(std::numeric_limits<int>::min(), -1));
    EXPECT_TRUE(nbsMultiples(720, 576, 16));
    EXPECT_FALSE(nbsMultiples(720, 576, 32));
    EXPECT_EQ(nbMultipleArrondi(12, 4), 12);
    EXPECT_EQ(nbMultipleArrondi(13, 4), 12);
    EXPECT_EQ(nbMultipleArrondi(14, 4), 16);
    EXPECT_EQ(nbMultipleArrondi(6, 4), 8);
    EXPECT_EQ(nbMultipleArrondi(7, 5), 10);
    EXPECT_EQ(nbMultipleArrondi(6, 5), 5);
    EXPECT_EQ(nbMultipleArrondi(2147483647, 16), 2147483647);
}

TEST(Rounding, ReducedPairs)
{
    struct Row {
        int a;
        int b;
        QList<int> expected;
    };
    const std::vector<Row> rows = {{1920, 1080, {16, 9}}, {1440, 1080, {4, 3}}, {722, 576, {361, 288}},
                                   {720, 576, {5, 4}},    {0, 0, {1, 1}},       {0, 6, {0, 1}},
                                   {19, 38, {19, 38}},    {17, 34, {1, 2}}};
    for (const Row& row : rows) {
        EXPECT_EQ(sousMultipleCommuns(row.a, row.b), row.expected) << row.a << ", " << row.b;
    }
}

TEST(Rounding, CommonDivisorNearAWish)
{
    struct Row {
        int a;
        int b;
        int wanted;
        int expected;
    };
    const std::vector<Row> rows = {{720, 576, 16, 16},
                                   {720, 480, 7, 5},
                                   // Only 6 would do, and it lies between two of the searched ranges.
                                   {6, 6, 10, 3},
                                   // The middle range begins at 9.
                                   {9, 27, 13, 9},
                                   // The lower range goes from 12, half the wish, to 15; 16 is in no range.
                                   {12, 24, 25, 12},
                                   {14, 28, 25, 14},
                                   {16, 32, 25, 2},
                                   // The upper range begins at 61, 41 * 1.5 cut to an integer.
                                   {61, 122, 41, 61},
                                   {49, 98, 25, 49},
                                   {34, 34, 11, 17},
                                   {43, 86, 7, 1},
                                   {41, 82, 7, 41},
                                   {0, 0, 7, 7},
                                   {7, 9, 1, 1}};
    for (const Row& row : rows) {
        EXPECT_EQ(nbsSousMultipleCommun(row.a, row.b, row.wanted), row.expected)
            << row.a << ", " << row.b << ", " << row.wanted;
    }
}

TEST(Rounding, CommonDivisorSaysItsPassesWhileDebugging)
{
    const test::LogCapture log;
    EXPECT_EQ(nbsSousMultipleCommun(43, 86, 7), 1);
    EXPECT_TRUE(log.lines().isEmpty());
    setDEBUG(1);
    EXPECT_EQ(nbsSousMultipleCommun(43, 86, 7), 1);
    setDEBUG(0);
    const QStringList expected = {
        text("nbsSousMultipleCommun: pass \u00B1 7"), text("nbsSousMultipleCommun: pass range < 7"),
        text("nbsSousMultipleCommun: pass range > 7"), text("nbsSousMultipleCommun: pass range nb 1ers"),
        text("nbsSousMultipleCommun: fin 1")};
    EXPECT_TEXTS(log.lines(), expected);
}

} // namespace
} // namespace tavrix
