// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/progressline.h"

#include "support/qtprinters.h"

#include <gtest/gtest.h>

#include <limits>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct WidthCase {
    const char* name;
    const char* text;
    int columns;
};

class DisplayWidth : public testing::TestWithParam<WidthCase>
{
};

TEST_P(DisplayWidth, countsColumns)
{
    EXPECT_EQ(displayWidth(text(GetParam().text)), GetParam().columns);
}

const WidthCase widthCases[] = {
    {"nothing", nullptr, 0},         {"ascii", "00001.MTS", 9},
    {"accents", "été", 3},           {"combiningAccent", "e\xCC\x81t\xC3\xA9", 3},
    {"ideographs", "夏休み", 6},     {"hangul", "여름", 4},
    {"fullWidthLetters", "ＡＢ", 4}, {"halfWidthKana", "ｱｲ", 2},
    {"pictogram", "🎥.mov", 6},       {"joiner", "a\xE2\x80\x8D\x62", 2},
    {"rareIdeograph", "𠀋", 2},
};

INSTANTIATE_TEST_SUITE_P(Texts, DisplayWidth, testing::ValuesIn(widthCases), rowName<WidthCase>);

struct ElisionCase {
    const char* name;
    const char* text;
    int width;
    const char* expected;
};

class Elided : public testing::TestWithParam<ElisionCase>
{
};

TEST_P(Elided, isCutInTheMiddle)
{
    const QString result = elided(text(GetParam().text), GetParam().width);
    EXPECT_EQ(shown(result), shown(text(GetParam().expected)));
    EXPECT_LE(displayWidth(result), std::max(0, GetParam().width));
}

const ElisionCase elisionCases[] = {
    {"fits", "abcdef", 6, "abcdef"},
    {"oneTooLong", "abcdefg", 6, "ab…efg"},
    {"odd", "abcdefgh", 5, "ab…gh"},
    {"one", "abc", 1, "…"},
    {"two", "abc", 2, "…c"},
    {"noRoom", "abc", 0, ""},
    {"lessThanNoRoom", "abc", -5, ""},
    {"emptyWithoutRoom", "", 0, ""},
    {"wideCharactersAreNotHalved", "夏休み夏休み", 8, "夏…休み"},
    {"wideInTwoColumns", "夏休み", 2, "…"},
    {"combiningCharactersStay", "e\xCC\x81\x65\xCC\x81", 2, "e\xCC\x81\x65\xCC\x81"},
    {"controlCharacters", "a\x1b[2Jb\nc\x7f", 20, "a\\x1b[2Jb\\nc\\x7f"},
    {"controlCharactersOfTheSecondSet",
     "a\xC2\x9B"
     "31mb",
     20, "a\\x9b31mb"},
};

INSTANTIATE_TEST_SUITE_P(Texts, Elided, testing::ValuesIn(elisionCases), rowName<ElisionCase>);

struct ClockCase {
    const char* name;
    double seconds;
    const char* expected;
};

class ClockText : public testing::TestWithParam<ClockCase>
{
};

TEST_P(ClockText, showsMinutesAndHours)
{
    EXPECT_TEXT(clockText(GetParam().seconds), text(GetParam().expected));
}

const ClockCase clockCases[] = {
    {"zero", 0, "0:00"},
    {"roundsUp", 59.5, "1:00"},
    {"roundsDown", 59.4, "0:59"},
    {"minutes", 754, "12:34"},
    {"lastMinute", 3599.4, "59:59"},
    {"hour", 3599.5, "1:00:00"},
    {"hours", 45296, "12:34:56"},
    {"longest", 359999, "99:59:59"},
    {"tooLong", 360000, "-:--"},
    {"negative", -1, "-:--"},
    {"noNumber", std::numeric_limits<double>::quiet_NaN(), "-:--"},
    {"infinite", std::numeric_limits<double>::infinity(), "-:--"},
};

INSTANTIATE_TEST_SUITE_P(Times, ClockText, testing::ValuesIn(clockCases), rowName<ClockCase>);

struct LineCase {
    const char* name;
    ProgressState state;
    int width;
    const char* expected;
};

class ProgressLine : public testing::TestWithParam<LineCase>
{
};

TEST_P(ProgressLine, showsNameBarPercentageSpeedAndTimeLeft)
{
    const QString line = progressLine(GetParam().state, GetParam().width);
    EXPECT_EQ(shown(line), shown(text(GetParam().expected)));
    EXPECT_LE(displayWidth(line), GetParam().width);
}

const LineCase lineCases[] = {
    {"half",
     {text("00001.MTS"), 1, 3, 1, 1, 0.5, 3, 5},
     79,
     "1/3 00001.MTS                 [#############.............]  50 %    3.0x  0:05"},
    {"begin", {text("a.avi"), 2, 2, 1, 1, 0, 0, -1}, 60, "2/2 a.avi            [................]   0 %    0.0x  -:--"},
    {"tooEarlyForASpeed",
     {text("a.avi"), 2, 2, 1, 1, 0.1, 0, -1},
     60,
     "2/2 a.avi            [#...............]  10 %    0.0x  -:--"},
    {"end", {text("a.avi"), 2, 2, 1, 1, 1, 2, 0}, 60, "2/2 a.avi            [################] 100 %    2.0x  0:00"},
    {"beyondTheEnd",
     {text("a.avi"), 2, 2, 1, 1, 1, 2.2, -0.45},
     60,
     "2/2 a.avi            [################] 100 %    2.2x  -:--"},
    {"longName",
     {text("a very long name of a camera clip in a folder.mts"), 1, 1, 1, 1, 0.1, 1, 9},
     60,
     "1/1 a very …lder.mts [#...............]  10 %    1.0x  0:09"},
    {"wideName",
     {text("夏休み夏休み夏休み夏休み.mts"), 1, 1, 1, 1, 0.1, 1, 9},
     60,
     "1/1 夏休み…休み.mts  [#...............]  10 %    1.0x  0:09"},
    {"controlCharacters",
     {text("a\x1b[2J"), 1, 1, 1, 1, 0.1, 1, 9},
     60,
     "1/1 a\\x1b[2J         [#...............]  10 %    1.0x  0:09"},
    {"secondStep",
     {text("a.avi"), 1, 2, 2, 2, 0.479, 0.4, 65},
     60,
     "1/2 a.avi       [#####.......] step 2/2  47 %    0.4x  1:05"},
    {"noRoomForABar", {text("a.avi"), 1, 1, 1, 1, 0.5, 5, 1}, 35, "1/1 50 %    5.0x  0:01"},
    {"narrow", {text("a.avi"), 1, 1, 1, 1, 0.5, 5, 1}, 10, "1/1 … 0:01"},
    {"noRoom", {text("a.avi"), 1, 1, 1, 1, 0.5, 5, 1}, 0, ""},
    {"widest",
     {text("a.avi"), 1, 1, 1, 1, 0.5, 5, 1},
     200,
     "1/1 a.avi                            [###############...............]  50 %    5.0x  0:01"},
};

INSTANTIATE_TEST_SUITE_P(States, ProgressLine, testing::ValuesIn(lineCases), rowName<LineCase>);

TEST(ProgressLineWidth, isNeverExceeded)
{
    const ProgressState states[] = {
        {text("夏休み clip number 1 \xF0\x9F\x8E\xA5.mts"), 1234, 5678, 1, 1, 0.416667, 30, 140},
        {text("é"), 1, 1, 1, 1, 0, 0, -1},
        {QString(), 0, 0, 1, 1, 0, 0, -1}};
    for (const ProgressState& state : states) {
        for (int width = 0; width <= 220; ++width) {
            EXPECT_LE(displayWidth(progressLine(state, width)), width) << width;
        }
    }
}

} // namespace
