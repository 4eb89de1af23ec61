// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/cliptime.h"

#include "support/qtprinters.h"

#include <gtest/gtest.h>

using namespace tavrix;

namespace
{

struct TimeRow {
    const char* text;
    std::optional<double> seconds;
};

const TimeRow timeRows[] = {
    {"0", 0},
    {"10", 10},
    {"90", 90},
    {"0:10", 10},
    {"1:05", 65},
    {"90:00", 5400},
    {"1:02:03", 3723},
    {"1:02:03.5", 3723.5},
    {"0:10.033", 10.033},
    {"7.25", 7.25},
    {"0:07,25", 7.25},
    {"", {}},
    {":", {}},
    {"1:", {}},
    {":10", {}},
    {"0:60", {}},
    {"1:60:00", {}},
    {"1:2:3:4", {}},
    {"-1", {}},
    {"+1", {}},
    {"1.", {}},
    {".5", {}},
    {"1.5:00", {}},
    {"1,5.2", {}},
    {"1.5,2", {}},
    {"ten", {}},
    {" 1", {}},
    {"1e3", {}},
    {"0x10", {}},
    {"nan", {}},
    {"99999999", {}},
    {"1.1234567", {}},
};

TEST(ClipTime, IsReadAsPeopleTypeIt)
{
    for (const TimeRow& row : timeRows) {
        const std::optional<double> seconds = clipTime(QString::fromLatin1(row.text));
        EXPECT_EQ(seconds.has_value(), row.seconds.has_value()) << row.text;
        if (seconds && row.seconds) {
            EXPECT_NEAR(*seconds, *row.seconds, 1e-9) << row.text;
        }
    }
}

TEST(ClipTime, IsWrittenAsItIsRead)
{
    const std::pair<double, const char*> texts[] = {{0, "0:00"},
                                                    {10, "0:10"},
                                                    {65, "1:05"},
                                                    {3723, "1:02:03"},
                                                    {10.0333667, "0:10.033"},
                                                    {7.25, "0:07.25"},
                                                    {3599.9996, "1:00:00"},
                                                    {59.9999, "1:00"},
                                                    {-1, "0:00"},
                                                    {0.0004, "0:00"},
                                                    {36000.5, "10:00:00.5"}};
    for (const auto& [seconds, text] : texts) {
        EXPECT_TEXT(clipTimeText(seconds), QString::fromLatin1(text));
        EXPECT_NEAR(clipTime(clipTimeText(seconds)).value_or(-1), std::max(0.0, seconds), 0.0005) << text;
    }
}

TEST(ClipPart, HoldsSomething)
{
    EXPECT_TRUE((ClipPart{0, std::nullopt}.isPossible()));
    EXPECT_TRUE((ClipPart{1, 1.5}.isPossible()));
    EXPECT_FALSE((ClipPart{1, 1}.isPossible()));
    EXPECT_FALSE((ClipPart{2, 1}.isPossible()));
}

} // namespace
