// SPDX-License-Identifier: GPL-3.0-or-later
// The pure parts of an analysis without ffmpeg: which command lines it serves, and how pictures are spaced.
#include "tools/ffmpeg/analysistask.h"
#include "tools/ffmpeg/picturespacing.h"

#include <gtest/gtest.h>

namespace tavrix
{

namespace
{

using front::AnalysisTask;
using front::analysisTask;
using front::PictureSpacing;
using Kind = AnalysisTask::Kind;
using Words = std::vector<std::string>;

Words frames(const std::string& source, const std::string& size, const std::string& output)
{
    return {"-v",       "2",       "-i",  source, "-vframes",     "10", "-s",  size,
            "-pix_fmt", "yuv420p", "-an", "-f",   "yuv4mpegpipe", "-y", output};
}

TEST(AnalysisTask, IsKnownByItsExactForm)
{
    EXPECT_EQ(analysisTask(frames("/a b.MTS", "640x480", "/t/frame.yuv")),
              (AnalysisTask{Kind::Frames, "/a b.MTS", 640, 480, 10}));
    EXPECT_EQ(analysisTask({"-vframes", "1", "-i", "x", "-s", "320x180", "-y", "x.jpg"}),
              (AnalysisTask{Kind::Thumbnail, "x", 320, 180, 1}));
    EXPECT_EQ(analysisTask({"-v", "2", "-i", "x"}), (AnalysisTask{Kind::Description, "x", 0, 0, 0}));
}

TEST(AnalysisTask, IsNoneForAnythingElse)
{
    const Words whole = frames("x", "640x480", "y");
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Words fewer = whole;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_EQ(analysisTask(fewer), std::nullopt) << whole[i];
        Words more = whole;
        more.insert(more.begin() + static_cast<std::ptrdiff_t>(i), "-n");
        EXPECT_EQ(analysisTask(more), std::nullopt) << whole[i];
    }
    const std::vector<Words> others = {
        {},
        {"-v", "2", "-i"},
        {"-v", "3", "-i", "x"},
        {"-v", "2", "-i", "-"},
        {"-v", "2", "-i", "-x"},
        {"-v", "2", "-i", "pipe:0"},
        {"-v", "2", "-i", ""},
        {"-vframes", "2", "-i", "x", "-s", "320x180", "-y", "x.jpg"},
        {"-vframes", "1", "-i", "x", "-s", "320x180", "-y", "x.png"},
        {"-vframes", "1", "-i", "x", "-s", "320x180", "-n", "x.jpg"},
        frames("x", "640", "y"),
        frames("x", "640x", "y"),
        frames("x", "640x481", "y"),
        frames("x", "-640x480", "y"),
        frames("x", "0x0", "y"),
        frames("x", "99999x480", "y"),
        frames("x", "640x480 ", "y"),
        frames("x", "640x480", "-"),
        frames("x", "640x480", ""),
    };
    for (const Words& words : others) {
        EXPECT_EQ(analysisTask(words), std::nullopt) << testing::PrintToString(words);
    }
}

// Each picture as "repetitions of the one before + its own", then what is told at the end.
std::string spaced(std::int64_t most, const std::vector<std::pair<double, double>>& pictures)
{
    PictureSpacing spacing(most);
    std::string text;
    for (const auto& [place, length] : pictures) {
        const auto shown = spacing.add(place, length);
        text += std::to_string(shown.previous) + '+' + std::to_string(shown.own) + ' ';
    }
    return text + "dup " + std::to_string(spacing.repeated()) + " drop " + std::to_string(spacing.droppedAtEnd());
}

TEST(PictureSpacing, FillsAndDropsLikeAnOutputOfEvenRate)
{
    struct Row {
        std::int64_t most;
        std::vector<std::pair<double, double>> pictures;
        const char* expected;
    };
    const std::vector<Row> rows = {
        {10, {{0, 1}, {1, 1}, {2, 1}}, "0+1 0+1 0+1 dup 0 drop 0"},
        {10, {{0, 1}, {1.05, 1}, {1.95, 1}}, "0+1 0+1 0+1 dup 0 drop 0"},
        {10, {{0, 1}, {2, 1}, {4, 1}}, "0+1 0+2 0+2 dup 2 drop 0"},
        {10, {{0, 1}, {3, 1}}, "0+1 1+2 dup 2 drop 0"},
        {10, {{0, 2}, {2, 2}}, "0+2 0+2 dup 2 drop 0"},
        {10, {{0, 1}, {1, 1}, {-1.5, 1}, {2, 1}}, "0+1 0+1 0+0 0+1 dup 0 drop 1"},
        {10, {{15, 1}}, "10+0 dup 10 drop 1"},
        {2, {{0, 1}, {9, 1}}, "0+1 1+0 dup 1 drop 1"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(spaced(row.most, row.pictures), row.expected);
    }
}

TEST(PictureSpacing, KnowsAHoleThatIsNotFilled)
{
    PictureSpacing spacing(5000);
    (void)spacing.add(0, 1);
    EXPECT_FALSE(spacing.isAbsurd());
    (void)spacing.add(2000, 1);
    EXPECT_TRUE(spacing.isAbsurd());
}

} // namespace

} // namespace tavrix
