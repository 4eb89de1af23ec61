// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/runestimate.h"

#include <gtest/gtest.h>

namespace tavrix::test
{
namespace
{

constexpr qint64 second = 1000;

const ClipWork clip{30, 1};

} // namespace

TEST(RunEstimate, SaysNothingTooEarly)
{
    RunEstimate estimate;
    EXPECT_FALSE(estimate.clipLeft(0));
    estimate.beginPass(0, clip, 1, 1);
    EXPECT_FALSE(estimate.clipLeft(5 * second));
    estimate.progress(1 * second, 0.5);
    EXPECT_FALSE(estimate.clipLeft(1 * second)) << "too short a time";
    estimate.progress(60 * second, 0.01);
    EXPECT_FALSE(estimate.clipLeft(60 * second)) << "too small a part";
}

TEST(RunEstimate, TellsTheSpeedOfThePass)
{
    RunEstimate estimate;
    EXPECT_EQ(estimate.speed(second), 0);
    estimate.beginPass(0, clip, 2, 2);
    estimate.progress(5 * second, 0.5);
    EXPECT_EQ(estimate.speed(100), 0) << "too early";
    EXPECT_DOUBLE_EQ(estimate.speed(5 * second), 3);
    estimate.setPaused(5 * second, true);
    EXPECT_DOUBLE_EQ(estimate.speed(50 * second), 3);
    estimate.endClip(60 * second, true);
    EXPECT_EQ(estimate.speed(60 * second), 0);
}

TEST(RunEstimate, GoesOnBetweenTwoLinesOfTheTool)
{
    RunEstimate estimate;
    estimate.beginPass(0, clip, 1, 1);
    estimate.progress(10 * second, 0.25);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(10 * second), 30);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(14 * second), 26);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(100 * second), 0);
}

TEST(RunEstimate, APauseDoesNotCount)
{
    RunEstimate estimate;
    estimate.beginPass(0, clip, 1, 1);
    estimate.progress(10 * second, 0.25);
    estimate.setPaused(12 * second, true);
    estimate.setPaused(12 * second, true);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(500 * second), 28);
    estimate.setPaused(1012 * second, false);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(1012 * second), 28);
    estimate.progress(1020 * second, 0.5);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(1020 * second), 20);
}

TEST(RunEstimate, WaitingClipsOfOneFormatGoByTheClipThatRuns)
{
    RunEstimate estimate;
    estimate.beginPass(0, clip, 1, 1);
    estimate.progress(10 * second, 0.5);
    EXPECT_DOUBLE_EQ(*estimate.batchLeft(10 * second, {}), 10);
    EXPECT_DOUBLE_EQ(*estimate.batchLeft(10 * second, {{60, 1}, {15, 1}}), 10 + 40 + 10);
    EXPECT_FALSE(estimate.batchLeft(10 * second, {{60, 1}, {15, 3}})) << "nothing is known of that format";
}

TEST(RunEstimate, FinishedClipsGiveTheirFormatsPace)
{
    RunEstimate estimate;
    estimate.beginPass(0, {10, 3}, 1, 1);
    estimate.endClip(5 * second, true);
    estimate.beginPass(5 * second, {10, 2}, 1, 1);
    estimate.endClip(100 * second, false);
    estimate.beginPass(100 * second, clip, 1, 1);
    estimate.progress(110 * second, 0.5);
    EXPECT_DOUBLE_EQ(*estimate.batchLeft(110 * second, {{60, 3}}), 10 + 30);
    EXPECT_FALSE(estimate.batchLeft(110 * second, {{60, 2}})) << "a clip that failed says nothing";
    estimate.beginBatch();
    EXPECT_FALSE(estimate.clipLeft(110 * second));
}

// Nobody knows how long the second pass takes before one has been seen.
TEST(RunEstimate, TheFirstOfTwoPassesIsNotTheWhole)
{
    RunEstimate estimate;
    estimate.beginPass(0, {10, 5}, 1, 2);
    estimate.progress(2 * second, 0.5);
    EXPECT_FALSE(estimate.clipLeft(2 * second));
    estimate.beginPass(4 * second, {10, 5}, 2, 2);
    estimate.progress(14 * second, 0.25);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(14 * second), 30);
    EXPECT_DOUBLE_EQ(*estimate.batchLeft(14 * second, {{20, 5}}), 30 + 88);
    estimate.endClip(44 * second, true);
    estimate.beginPass(44 * second, {20, 5}, 1, 2);
    estimate.progress(48 * second, 0.5);
    EXPECT_DOUBLE_EQ(*estimate.clipLeft(48 * second), 4 + 80);
}

} // namespace tavrix::test
