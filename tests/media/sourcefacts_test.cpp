// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/sourcefacts.h"

#include "support/clipmaker.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

namespace tavrix::media
{
namespace
{

using test::bytesOf;
using test::putBytes;

constexpr std::size_t afterType = 4;

// Two seconds of 25 pictures a second, with pictures that are shown in another order than stored, and mono sound.
class SourceFactsTest : public testing::Test
{
protected:
    [[nodiscard]] std::string path(const char* name) const
    {
        return folder_.path(QString::fromLatin1(name)).toStdString();
    }

    [[nodiscard]] bool make(const std::string& file, std::vector<std::string> more = {}) const
    {
        std::vector<std::string> words = {"-f",
                                          "lavfi",
                                          "-i",
                                          "testsrc2=s=64x48:r=25:d=2",
                                          "-f",
                                          "lavfi",
                                          "-i",
                                          "sine=d=2:r=44100",
                                          "-c:v",
                                          "libx264",
                                          "-preset",
                                          "ultrafast",
                                          "-bf",
                                          "2",
                                          "-g",
                                          "10",
                                          "-sc_threshold",
                                          "0",
                                          "-c:a",
                                          "aac"};
        words.insert(words.end(), more.begin(), more.end());
        words.push_back(file);
        return test::runFfmpeg(words);
    }

    [[nodiscard]] static SourceFacts facts(const std::string& file)
    {
        auto read = readSourceFacts(file);
        EXPECT_TRUE(read) << read.reason();
        return read ? *read : SourceFacts();
    }

    test::TempFolder folder_;
};

TEST_F(SourceFactsTest, OfAMovie)
{
    ASSERT_TRUE(make(path("a.mov")));
    const SourceFacts movie = facts(path("a.mov"));
    EXPECT_TRUE(movie.isMovie);
    EXPECT_NEAR(movie.duration.value_or(0), 2, 0.05);
    const StreamFacts* const picture = movie.chosen(Kind::Picture);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->codec, "h264");
    EXPECT_EQ(picture->width, 64);
    EXPECT_EQ(picture->height, 48);
    EXPECT_EQ(picture->nominalRate, (Ratio{25, 1}));
    EXPECT_EQ(picture->packets, 50);
    EXPECT_EQ(picture->shownPackets, 50);
    EXPECT_EQ(picture->missingPackets, 0);
    EXPECT_FALSE(picture->edits.endsBeforeMedia);
    EXPECT_EQ(picture->edits.pieces, 1);
    EXPECT_NEAR(picture->start.value_or(-1), 0, 0.001);
    EXPECT_NEAR(picture->duration.value_or(0), 2, 0.001);
    const StreamFacts* const sound = movie.chosen(Kind::Sound);
    ASSERT_NE(sound, nullptr);
    EXPECT_EQ(sound->channels, 1);
    EXPECT_EQ(sound->layout, "mono");
    EXPECT_EQ(sound->sampleRate, 44100);
}

TEST_F(SourceFactsTest, OfATransportStreamCountFromItsFirstStream)
{
    ASSERT_TRUE(make(path("a.mts"), {"-c:a", "ac3", "-ac", "2", "-f", "mpegts"}));
    const SourceFacts stream = facts(path("a.mts"));
    EXPECT_FALSE(stream.isMovie);
    EXPECT_EQ(stream.container, "mpegts");
    EXPECT_GT(stream.origin, 1);
    const StreamFacts* const picture = stream.chosen(Kind::Picture);
    ASSERT_NE(picture, nullptr);
    EXPECT_NEAR(picture->start.value_or(-1), 0, 0.2);
    EXPECT_EQ(picture->packets, std::nullopt);
    EXPECT_EQ(picture->id, 0x100);
    ASSERT_NE(stream.chosen(Kind::Sound), nullptr);
    EXPECT_EQ(stream.chosen(Kind::Sound)->layout, "stereo");
}

TEST_F(SourceFactsTest, OfATurnedMovie)
{
    ASSERT_TRUE(make(path("a.mov"), {"-an"}));
    std::string bytes = bytesOf(path("a.mov"));
    const std::size_t matrix = bytes.find("tkhd") + afterType + 40;
    const std::uint32_t quarter[] = {0, 65536, 0, 0xffff0000, 0};
    for (std::size_t i = 0; i < 5; ++i) {
        test::setBigEndian32(bytes, matrix + 4 * i, quarter[i]);
    }
    putBytes(path("turned.mov"), bytes);
    EXPECT_EQ(facts(path("turned.mov")).chosen(Kind::Picture)->turning, (Turning{90, false}));
}

// What a player cuts off is in the file all the same.
TEST_F(SourceFactsTest, OfATrimmedMovie)
{
    ASSERT_TRUE(make(path("a.mov"), {"-an"}));
    std::string bytes = bytesOf(path("a.mov"));
    const std::size_t edit = bytes.find("elst") + afterType + 8;
    EXPECT_EQ(test::bigEndian32(bytes, edit), 2000U);
    test::setBigEndian32(bytes, edit, 1000);
    putBytes(path("trimmed.mov"), bytes);
    const StreamFacts picture = *facts(path("trimmed.mov")).chosen(Kind::Picture);
    EXPECT_TRUE(picture.edits.present);
    EXPECT_TRUE(picture.edits.endsBeforeMedia);
    EXPECT_FALSE(picture.edits.hidesStart);
    EXPECT_EQ(picture.shownPackets, 25);
    EXPECT_NEAR(picture.duration.value_or(0), 1, 0.001);
}

TEST_F(SourceFactsTest, OfAMovieThatEndsEarly)
{
    ASSERT_TRUE(make(path("a.mov"), {"-an", "-movflags", "faststart"}));
    const std::string bytes = bytesOf(path("a.mov"));
    putBytes(path("cut.mov"), bytes.substr(0, bytes.size() * 3 / 4));
    const StreamFacts picture = *facts(path("cut.mov")).chosen(Kind::Picture);
    EXPECT_EQ(picture.packets, 50);
    EXPECT_GT(picture.missingPackets.value_or(0), 5);
    EXPECT_LT(picture.missingPackets.value_or(0), 45);
}

TEST_F(SourceFactsTest, ThereAreNoneOfAPlayListOrAFolder)
{
    ASSERT_TRUE(make(path("a.mts"), {"-an", "-f", "mpegts"}));
    putBytes(path("list.mts"), "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:2,\n" + path("a.mts") + "\n#EXT-X-ENDLIST\n");
    putBytes(path("script.mov"), "ffconcat version 1.0\nfile " + path("a.mts") + "\n");
    EXPECT_FALSE(readSourceFacts(path("list.mts")));
    EXPECT_FALSE(readSourceFacts(path("script.mov")));
    EXPECT_FALSE(readSourceFacts(path(".")));
    EXPECT_FALSE(readSourceFacts(path("missing.mov")));
    EXPECT_TRUE(readSourceFacts(path("a.mts")));
}

} // namespace
} // namespace tavrix::media
