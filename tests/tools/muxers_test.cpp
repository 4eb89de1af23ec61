// SPDX-License-Identifier: GPL-3.0-or-later
// From an output's name to the container that is written.
#include "tools/ffmpeg/muxers.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavrix::front
{

namespace
{

TEST(Muxers, FollowTheExtension)
{
    struct {
        const char* name;
        std::vector<std::string> arguments;
    } const cases[] = {
        {"/a/b.mp4", {"-f", "mp4"}},
        {"b.M4V", {"-f", "ipod"}},
        {"b.mov", {"-f", "mov"}},
        {"b.avi", {"-f", "avi"}},
        {"b.jpg", {"-c:v", "mjpeg", "-f", "image2", "-update", "1"}},
        {"b.png", {"-c:v", "png", "-f", "image2", "-update", "1"}},
        {"b.tif", {"-c:v", "tiff", "-f", "image2", "-update", "1"}},
        {"b.wav", {"-f", "wav"}},
        {"b.mpg", {"-f", "mpeg"}},
        {"b.mkv", {"-f", "matroska"}},
        {"b.MTS", {"-f", "mpegts"}},
        {"b.m2ts", {"-f", "mpegts", "-mpegts_m2ts_mode", "1"}},
        {"b.unknown", {}},
        {"/a.mp4/b", {}},
        {"mp4", {}},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(muxerArguments(row.name), row.arguments) << row.name;
    }
}

TEST(Muxers, NumberedPicturesAreToldFromNames)
{
    EXPECT_TRUE(isPictureSequence("x%d.jpg"));
    EXPECT_TRUE(isPictureSequence("x%%03d%04d.png"));
    EXPECT_FALSE(isPictureSequence("x%d.mts"));
    EXPECT_FALSE(isPictureSequence("100%.jpg"));
    EXPECT_FALSE(isPictureSequence("x.jpg"));
}

TEST(Muxers, NumberedPicturesHaveNumbersWhereThePatternSays)
{
    struct {
        const char* pattern;
        const char* name;
        bool matches;
    } const cases[] = {
        {"x%03d.jpg", "x001.jpg", true}, {"x%03d.jpg", "x1000.jpg", true}, {"x%d.jpg", "x7.jpg", true},
        {"x%d.jpg", "x.jpg", false},     {"x%d.jpg", "y7.jpg", false},     {"x%d.jpg", "x7.jpeg", false},
        {"x%d.jpg", "x7", false},        {"%%%d.jpg", "%12.jpg", true},    {"%%%d.jpg", "12.jpg", false},
        {"x%d.jpg", "x%d.jpg", false},   {"a%d-%d.png", "a1-2.png", true}, {"a%d-%d.png", "a1-.png", false},
        {"100%.jpg", "100%.jpg", true},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(isPictureOf(row.pattern, row.name), row.matches) << row.pattern << ' ' << row.name;
    }
}

TEST(Muxers, SomeWriteNoFileOfTheOutputsNameAlone)
{
    EXPECT_TRUE(writesOtherFiles({"-f", "null"}));
    EXPECT_TRUE(writesOtherFiles(muxerArguments("a.m3u8")));
    EXPECT_FALSE(writesOtherFiles({"-f", "mov"}));
    EXPECT_FALSE(writesOtherFiles({}));
}

} // namespace

} // namespace tavrix::front
