// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/pictureclock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace tavrix::movencoder;

namespace
{

struct RateRow {
    const char* name;
    Fraction rate;
    std::optional<std::pair<std::int64_t, std::int64_t>> usual;
};

class PictureClockRate : public testing::TestWithParam<RateRow>
{
};

TEST_P(PictureClockRate, IsTheNearestUsualOne)
{
    const auto usual = usualRate(GetParam().rate);
    ASSERT_EQ(usual.has_value(), GetParam().usual.has_value());
    if (usual) {
        EXPECT_EQ(usual->num, GetParam().usual->first);
        EXPECT_EQ(usual->den, GetParam().usual->second);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rates, PictureClockRate,
    testing::Values(RateRow{"Exact", {60000, 1001}, {{60000, 1001}}}, RateRow{"Sixty", {60, 1}, {{60, 1}}},
                    RateRow{"MeanOfAShortClip", {33480000, 558600}, {{60000, 1001}}},
                    RateRow{"PhoneALittleOver", {45000, 1499}, {{30, 1}}},
                    RateRow{"Film", {2997000, 125000}, {{24000, 1001}}},
                    RateRow{"HalfRate", {15000, 1001}, {{15000, 1001}}}, RateRow{"Odd", {22, 1}, std::nullopt},
                    RateRow{"ClockForARate", {90000, 1}, std::nullopt}, RateRow{"Unknown", {0, 1}, std::nullopt}),
    [](const testing::TestParamInfo<RateRow>& row) { return std::string(row.param.name); });

// A container's clock and how its writer rounded.
struct GridRow {
    const char* name;
    std::int64_t clock; // ticks a second
    Fraction rate;
    bool floors;
    std::int64_t start;
};

class PictureClockGrid : public testing::TestWithParam<GridRow>
{
};

TEST_P(PictureClockGrid, RoundedTimesBecomeExact)
{
    const GridRow& row = GetParam();
    PictureClock clock({1, row.clock}, row.rate);
    std::set<std::int64_t> steps;
    std::optional<std::int64_t> last;
    double farthest = 0; // ticks of the container's clock
    for (std::int64_t i = 0; i < 20'000; ++i) {
        const double exact =
            static_cast<double>(i) * static_cast<double>(row.clock * row.rate.den) / static_cast<double>(row.rate.num);
        const auto time = row.start + static_cast<std::int64_t>(row.floors ? std::floor(exact) : std::round(exact));
        const PictureClock::Shown shown = clock.place(time, 1);
        const double moved =
            static_cast<double>(shown.time) * static_cast<double>(row.clock) / static_cast<double>(clock.scale()) -
            static_cast<double>(time);
        farthest = std::max(farthest, std::abs(moved));
        if (last) {
            steps.insert(shown.time - *last);
        }
        last = shown.time;
    }
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(*steps.begin() * row.rate.num, clock.scale() * row.rate.den);
    EXPECT_LE(farthest, row.clock >= 10'000 ? 1.0 : 0.5);
}

INSTANTIATE_TEST_SUITE_P(Clocks, PictureClockGrid,
                         testing::Values(GridRow{"TransportStream5994", 90'000, {60000, 1001}, false, 129'003},
                                         GridRow{"TransportStream5994Floored", 90'000, {60000, 1001}, true, 129'003},
                                         GridRow{"TransportStream23976", 90'000, {24000, 1001}, true, 0},
                                         GridRow{"TransportStream2997", 90'000, {30000, 1001}, false, 7},
                                         GridRow{"TransportStream25", 90'000, {25, 1}, false, 90'001},
                                         GridRow{"TransportStream50", 90'000, {50, 1}, false, 0},
                                         GridRow{"TransportStream60", 90'000, {60, 1}, false, 0},
                                         GridRow{"Movie600", 600, {30000, 1001}, false, 0},
                                         GridRow{"Movie600At24", 600, {24000, 1001}, false, 0},
                                         GridRow{"Movie12800", 12'800, {30000, 1001}, false, 0},
                                         GridRow{"Milliseconds", 1'000, {30, 1}, false, 0}),
                         [](const testing::TestParamInfo<GridRow>& row) { return std::string(row.param.name); });

// Times in, times out, both at 90000 ticks a second and for 60 pictures a second (1500 ticks).
struct TimesRow {
    const char* name;
    std::vector<std::optional<std::int64_t>> in;
    std::vector<std::int64_t> out;
};

class PictureClockTimes : public testing::TestWithParam<TimesRow>
{
};

TEST_P(PictureClockTimes, AreKeptInOrder)
{
    PictureClock clock({1, 90'000}, {60, 1});
    ASSERT_EQ(clock.scale(), 90'000);
    std::vector<std::int64_t> out;
    for (const auto& time : GetParam().in) {
        out.push_back(clock.place(time, 1500).time);
    }
    EXPECT_EQ(out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PictureClockTimes,
    testing::Values(
        TimesRow{"Steady", {0, 1500, 3000}, {0, 1500, 3000}},
        TimesRow{"VariableStaysVariable", {0, 1400, 3100, 9000}, {0, 1400, 3100, 9000}},
        TimesRow{"AfterAGapTheRowStartsAnew", {0, 1501, 10'000, 11'501, 13'001}, {0, 1500, 10'000, 11'500, 13'000}},
        TimesRow{"WithoutTimes", {0, std::nullopt, std::nullopt}, {0, 1500, 3000}},
        // Two pictures come too late; those after them keep their time.
        TimesRow{"StepBack", {0, 1500, 3000, 1000, 2500, 4000, 5500}, {0, 1500, 3000, 3187, 3374, 4000, 5500}},
        TimesRow{"SameTimeTwice", {0, 1500, 1500, 3000}, {0, 1500, 1687, 3000}},
        TimesRow{"CloseTogetherIsNoStepBack", {0, 50, 1500}, {0, 50, 1500}}),
    [](const testing::TestParamInfo<TimesRow>& row) { return std::string(row.param.name); });

TEST(PictureClock, ClockOfOddLengthCountsInItsParts)
{
    // As in AVI files.
    PictureClock clock({1001, 30000}, {30000, 1001});
    EXPECT_EQ(clock.scale(), 30'000);
    EXPECT_EQ(clock.place(0, 1).duration, 1001);
    EXPECT_EQ(clock.place(7, 1).time, 7007);
}

TEST(PictureClock, TooFineAScaleIsNotMade)
{
    PictureClock clock({1, 1'000'000}, {30000, 1001});
    EXPECT_EQ(clock.scale(), 1'000'000);
    EXPECT_EQ(clock.place(33'367, 33'367).time, 33'367);
}

TEST(PictureClock, DurationsOfTheRateAreExact)
{
    const PictureClock clock({1, 90'000}, {60000, 1001});
    EXPECT_EQ(clock.durationOf(1501), 3003);
    EXPECT_EQ(clock.durationOf(1502), 3003);
    EXPECT_EQ(clock.durationOf(3000), 6000);
}

} // namespace
