// SPDX-License-Identifier: GPL-3.0-or-later
// Turned pictures come out upright in their own shape; sound comes out at its own level on both sides.
#include "pipeline/clips.h"
#include "pipeline/convert.h"
#include "pipeline/numberedclip.h"
#include "pipeline/words.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

using namespace tavrix::test;

namespace
{

double decibels(double ratio)
{
    return 20 * std::log10(ratio);
}

// How a clip is stored, and how a player turns it back.
struct TurnedRow {
    const char* name;
    const char* stored; // filter from the upright picture to the stored one
    int a, b, c, d;
    bool upright; // the shown picture is 180x320, else 320x180
};

std::ostream& operator<<(std::ostream& out, const TurnedRow& row)
{
    return out << row.name;
}

const TurnedRow turnedRows[] = {
    {"by90", "transpose=cclock", 0, 1, -1, 0, true},
    {"by270", "transpose=clock", 0, -1, 1, 0, true},
    {"by180", "hflip,vflip", -1, 0, 0, -1, false},
    {"mirrored", "hflip", -1, 0, 0, 1, false},
    {"upsideDown", "vflip", 1, 0, 0, -1, false},
    {"mirroredBy90", "transpose=cclock_flip", 0, 1, 1, 0, true},
    {"mirroredBy270", "transpose=clock_flip", 0, -1, -1, 0, true},
    {"notTurned", "null", 1, 0, 0, 1, false},
};

class Turned : public ::testing::TestWithParam<TurnedRow>
{
protected:
    TempFolder folder;
};

TEST_P(Turned, ComesOutUprightInItsOwnShapeInsideTheFormatsFrame)
{
    const TurnedRow& row = GetParam();
    NumberedClip clip;
    clip.width = row.upright ? 180 : 320;
    clip.height = row.upright ? 320 : 180;
    clip.pictures = 25;
    clip.channels = 0;
    clip.pictureFilter = words("-vf") << text(row.stored);
    clip.codecs = words("-c:v libx264 -preset ultrafast -qp 16 -pix_fmt yuv420p -f mov");
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    ASSERT_TRUE(turnMovie(source, row.a, row.b, row.c, row.d));
    for (const int format : {0, 1}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const QJsonObject video = streamOf(probed(converted.output), text("video"));
        EXPECT_EQ(video.value(text("width")).toInt(), format == 0 ? 480 : 640);
        EXPECT_EQ(video.value(text("height")).toInt(), format == 0 ? 272 : 368);
        EXPECT_EQ(video.value(text("display_aspect_ratio")).toString(), text("16:9"));
        // A 9:16 picture as high as a 16:9 frame takes 81 of 256 parts of its width.
        const double half = row.upright ? 81.0 / 512 : 0.5;
        const PictureArea area = {0.5 - half, 0, 0.5 + half, 1};
        const std::vector<ShownPicture> pictures = shownPictures(converted.output, area);
        ASSERT_EQ(pictures.size(), std::size_t{25});
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            EXPECT_EQ(pictures[i].number, int(i)) << "format " << format;
        }
        if (row.upright) {
            EXPECT_LT(brightness(converted.output, {0, 0, 0.5 - half - 0.01, 1}), 22) << "left side";
            EXPECT_LT(brightness(converted.output, {0.5 + half + 0.01, 0, 1, 1}), 22) << "right side";
            EXPECT_GT(brightness(converted.output, {0.5 - half + 0.01, 0.05, 0.5 + half - 0.01, 0.3}), 150);
        }
    }
}

TEST_P(Turned, KeepsItsFlagInTheCopies)
{
    const TurnedRow& row = GetParam();
    NumberedClip clip;
    clip.width = row.upright ? 180 : 320;
    clip.height = row.upright ? 320 : 180;
    clip.pictures = 25;
    clip.pictureFilter = words("-vf") << text(row.stored);
    clip.codecs = words("-c:v libx264 -preset ultrafast -qp 16 -pix_fmt yuv420p -c:a aac -f mov");
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    ASSERT_TRUE(turnMovie(source, row.a, row.b, row.c, row.d));
    for (const int format : {2, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const std::vector<ShownPicture> pictures = shownPictures(converted.output);
        ASSERT_EQ(pictures.size(), std::size_t{25});
        EXPECT_EQ(pictures.front().number, 0) << "format " << format;
        EXPECT_EQ(pictures.back().number, 24) << "format " << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Turned, ::testing::ValuesIn(turnedRows),
                         [](const auto& row) { return std::string(row.param.name); });

// Weights of the channels of 5.1: left, right, centre, low, left behind, right behind.
struct SoundRow {
    const char* name;
    int channels;
    std::vector<int> sounding;
    double left; // expected, of the amplitude
    double right;
};

std::ostream& operator<<(std::ostream& out, const SoundRow& row)
{
    return out << row.name;
}

const SoundRow soundRows[] = {
    {"mono", 1, {}, 1, 1},
    {"stereo", 2, {}, 1, 1},
    {"stereoLeft", 2, {0}, 1, 0},
    {"surroundLeft", 6, {0}, 1, 0},
    {"surroundRight", 6, {1}, 0, 1},
    {"surroundCentre", 6, {2}, 0.7071, 0.7071},
    {"surroundLeftBehind", 6, {4}, 0.7071, 0},
};

class Sound : public ::testing::TestWithParam<SoundRow>
{
protected:
    [[nodiscard]] QString made(const SoundRow& row, double amplitude, const char* codec, const char* extension) const
    {
        NumberedClip clip;
        clip.pictures = 50;
        clip.channels = row.channels;
        clip.sounding = row.sounding;
        clip.soundFrom = 0.5;
        clip.soundTo = 1.5;
        clip.amplitude = amplitude;
        clip.codecs = words("-c:v libx264 -preset ultrafast -qp 30 -pix_fmt yuv420p") << words(codec);
        const QString source = folder.path(text("clip.") + text(extension));
        return makeNumberedClip(source, clip) ? source : QString();
    }
    TempFolder folder;
};

TEST_P(Sound, HasItsOwnLevelInEveryFormat)
{
    const SoundRow& row = GetParam();
    const QString source = made(row, 0.25, "-c:a pcm_s16le", "mov");
    ASSERT_FALSE(source.isEmpty());
    for (const int format : {0, 1, 2, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const ShownSound sound = shownSound(converted.output);
        ASSERT_EQ(sound.channels.size(), std::size_t{2});
        const double expected[] = {row.left, row.right};
        for (const std::size_t channel : {std::size_t{0}, std::size_t{1}}) {
            const double level = sound.level(channel, 0.7, 1.3) * std::sqrt(2.0) / 0.25;
            if (expected[channel] == 0) {
                EXPECT_LT(level, 0.003) << "format " << format;
            } else {
                EXPECT_NEAR(decibels(level / expected[channel]), 0, 0.15) << "format " << format;
            }
        }
        EXPECT_NEAR(sound.onset(expected[0] == 0 ? 1 : 0), 0.5, 0.003) << "format " << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Sound, ::testing::ValuesIn(soundRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SurroundSound, AsLoudAsItGetsDoesNotRunOver)
{
    TempFolder folder;
    NumberedClip clip;
    clip.pictures = 50;
    clip.channels = 6;
    clip.soundFrom = 0.5;
    clip.soundTo = 1.5;
    clip.amplitude = 0.95;
    clip.codecs = words("-c:v libx264 -preset ultrafast -qp 30 -pix_fmt yuv420p -c:a ac3 -b:a 448k -f mpegts");
    const QString source = folder.path(text("clip.MTS"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    for (const int format : {1, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const ShownSound sound = shownSound(converted.output);
        for (const std::size_t channel : {std::size_t{0}, std::size_t{1}}) {
            EXPECT_LE(sound.peak(channel), format == 3 ? 0.99 : 1.02) << "format " << format;
            // A tone that is cut off flat at the top would be louder than its peak allows.
            EXPECT_LE(sound.level(channel, 0.7, 1.3), 0.98 / std::sqrt(2.0) * 1.02) << "format " << format;
            EXPECT_GE(sound.peak(channel), 0.9) << "format " << format;
            // The encoder of AAC of ffmpeg 4 takes a third of a steady tone's level, but not of its peaks.
            if (format == 3) {
                EXPECT_GE(sound.level(channel, 0.7, 1.3), 0.9 / std::sqrt(2.0));
            }
        }
    }
}

} // namespace
