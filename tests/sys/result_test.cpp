// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/result.h"

#include <gtest/gtest.h>

#include <memory>

namespace tavrix
{
namespace
{

Result<int> half(int number)
{
    if (number % 2 != 0) {
        return Failure{"odd"};
    }
    return number / 2;
}

Result<void> check(bool good)
{
    if (!good) {
        return Failure{"not good"};
    }
    return {};
}

TEST(Result, HoldsTheValueOrTheReason)
{
    const auto good = half(6);
    ASSERT_TRUE(good);
    EXPECT_EQ(*good, 3);
    EXPECT_EQ(good.reason(), "");
    const auto bad = half(7);
    EXPECT_FALSE(bad);
    EXPECT_EQ(bad.reason(), "odd");
}

TEST(Result, WithoutAValueTellsSuccessAlone)
{
    EXPECT_TRUE(check(true));
    EXPECT_FALSE(check(false));
    EXPECT_EQ(check(false).reason(), "not good");
}

TEST(Result, GivesAwayWhatCanOnlyBeMoved)
{
    Result<std::unique_ptr<int>> owner = std::make_unique<int>(4);
    const std::unique_ptr<int> taken = *std::move(owner);
    EXPECT_EQ(*taken, 4);
}

} // namespace
} // namespace tavrix
