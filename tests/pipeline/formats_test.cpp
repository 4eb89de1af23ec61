// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"

#include <gtest/gtest.h>

#include <QFileInfo>

#include <cmath>
#include <ostream>

using namespace tavrix::test;

namespace
{

// What an output of a format must be.
struct FormatRow {
    int format;
    bool motionJpeg; // the 4:3 AVI instead of the 16:9 transport stream
    const char* extension;
    const char* videoCodec;
    int width;
    int height;
    const char* aspect;
    const char* rate;
    const char* audioCodec;
    const char* sampleRate;
    int channels;
};

std::ostream& operator<<(std::ostream& out, const FormatRow& row)
{
    return out << "format " << row.format << (row.motionJpeg ? " from AVI" : " from MTS");
}

const FormatRow formatRows[] = {
    {0, false, "mp4", "mpeg4", 480, 272, "16:9", "30000/1001", "aac", "44100", 2},
    {0, true, "mp4", "mpeg4", 368, 272, "4:3", "30/1", "aac", "44100", 2},
    {1, false, "m4v", "h264", 640, 368, "16:9", "30000/1001", "aac", "44100", 2},
    {1, true, "m4v", "h264", 480, 368, "4:3", "30/1", "aac", "44100", 2},
    {2, false, "m4v", "h264", 1280, 720, "16:9", "60000/1001", "aac", "44100", 2},
    {2, true, "avi", "mjpeg", 640, 480, "4:3", "30/1", "pcm_s16le", "48000", 2},
    {3, false, "mov", "h264", 1280, 720, "16:9", "60000/1001", "pcm_s16le", "48000", 2},
    {3, true, "mov", "mjpeg", 640, 480, "4:3", "30/1", "pcm_s16le", "48000", 2},
    {4, false, "mov", "aic", 1280, 720, "16:9", "60000/1001", "pcm_s16le", "48000", 2},
    {4, true, "mov", "aic", 1280, 720, "16:9", "30/1", "pcm_s16le", "48000", 2},
    {5, false, "mov", "prores", 1280, 720, "16:9", "60000/1001", "pcm_s16le", "48000", 2},
    {5, true, "mov", "prores", 1280, 720, "16:9", "30/1", "pcm_s16le", "48000", 2},
};

class Formats : public ::testing::TestWithParam<FormatRow>
{
protected:
    static void SetUpTestSuite()
    {
        clips = new TempFolder;
        ASSERT_TRUE(makeClip(clips->path(text("00001.MTS")), avchdLiteClip()));
        ASSERT_TRUE(makeClip(clips->path(text("P1000002.AVI")), motionJpegClip()));
    }
    static void TearDownTestSuite()
    {
        delete clips;
        clips = nullptr;
    }
    static TempFolder* clips;
};

TempFolder* Formats::clips = nullptr;

TEST_P(Formats, outputHasTheCodecSizeAspectRateAndSoundOfItsFormat)
{
    const FormatRow& row = GetParam();
    TempFolder destination;
    BatchProgram program;
    const QString source = clips->path(row.motionJpeg ? text("P1000002.AVI") : text("00001.MTS"));
    const BatchResult result =
        program.run({text("--format"), QString::number(row.format), text("--output"), destination.path(), source});
    ASSERT_EQ(result.exitCode, 0);
    ASSERT_EQ(result.outputs().size(), 1);
    const QString output = result.outputs().first();
    EXPECT_EQ(QFileInfo(output).suffix().toStdString(), row.extension);
    EXPECT_TRUE(QFileInfo(output).fileName().startsWith(text("clip-")));
    EXPECT_EQ(QFileInfo(output).path(), destination.path(text("Tavrix events")));

    const QJsonObject probe = probed(output);
    const QJsonObject video = streamOf(probe, text("video"));
    const QJsonObject audio = streamOf(probe, text("audio"));
    EXPECT_EQ(video.value(text("codec_name")).toString().toStdString(), row.videoCodec);
    EXPECT_EQ(video.value(text("width")).toInt(), row.width);
    EXPECT_EQ(video.value(text("height")).toInt(), row.height);
    EXPECT_EQ(video.value(text("display_aspect_ratio")).toString().toStdString(), row.aspect);
    EXPECT_EQ(video.value(text("r_frame_rate")).toString().toStdString(), row.rate);
    EXPECT_EQ(audio.value(text("codec_name")).toString().toStdString(), row.audioCodec);
    EXPECT_EQ(audio.value(text("sample_rate")).toString().toStdString(), row.sampleRate);
    EXPECT_EQ(audio.value(text("channels")).toInt(), row.channels);
    EXPECT_NEAR(secondsOf(probe.value(text("format")).toObject(), "duration"), 6.0, 0.1);
    EXPECT_LE(std::abs(secondsOf(video, "start_time") - secondsOf(audio, "start_time")), 0.040);
    EXPECT_TRUE(
        runTool(text("/usr/bin/ffmpeg"), {text("-nostdin"), text("-v"), text("error"), text("-xerror"), text("-i"),
                                          text("file:") + output, text("-f"), text("null"), text("-")}));
    EXPECT_EQ(filesBelow(destination.path()).size(), 1) << "intermediates were left behind";
}

INSTANTIATE_TEST_SUITE_P(Pipeline, Formats, ::testing::ValuesIn(formatRows));

TEST(Selection, leavesOutWhatIsNoCameraClipReportsTheBrokenAndConvertsTheOthers)
{
    TempFolder clips;
    TempFolder destination;
    ASSERT_TRUE(makeClip(clips.path(text("a good.avi")), motionJpegClip()));
    ASSERT_TRUE(makeClip(clips.path(text("b interlaced.mts")), interlacedClip()));
    ASSERT_TRUE(makeClip(clips.path(text("c large.mts")), fullHdClip()));
    clips.makeFile(text("d broken.mts"), QByteArray(50000, 'x'));
    clips.makeFile(text("e empty.mov"), QByteArray());
    clips.makeFile(text("notes.txt"), "no clip");
    BatchProgram program;
    const BatchResult result = program.run({text("--output"), destination.path(), clips.path()});
    EXPECT_EQ(result.exitCode, 1);
    ASSERT_EQ(result.outputs().size(), 1);
    EXPECT_TRUE(result.outputs().first().endsWith(text("a good.mov")));
    QStringList leftOut;
    for (const QJsonObject& event : result.named(text("rejected"))) {
        leftOut << QFileInfo(event.value(text("source")).toString()).fileName();
        EXPECT_FALSE(event.value(text("reason")).toString().isEmpty());
    }
    EXPECT_TRUE(leftOut.contains(text("b interlaced.mts")));
    EXPECT_TRUE(leftOut.contains(text("c large.mts")));
    int reported = 0;
    for (const QJsonObject& row : result.named(text("row-finished"))) {
        if (!row.value(text("success")).toBool()) {
            ++reported;
            EXPECT_FALSE(row.value(text("reason")).toString().isEmpty());
        }
    }
    EXPECT_EQ(reported + leftOut.size(), 4) << "every source that is no clip is either left out or a failed row";
}

TEST(Selection, nothingAcceptedEndsWithThree)
{
    TempFolder clips;
    TempFolder destination;
    clips.makeFile(text("notes.txt"), "no clip");
    BatchProgram program;
    EXPECT_EQ(program.run({text("--output"), destination.path(), clips.path()}).exitCode, 3);
    ASSERT_TRUE(makeClip(clips.path(text("large.mts")), fullHdClip()));
    EXPECT_EQ(program.run({text("--output"), destination.path(), clips.path()}).exitCode, 3);
    EXPECT_TRUE(filesBelow(destination.path()).isEmpty());
}

TEST(Selection, anExistingOutputIsKeptOrReplacedAsAsked)
{
    TempFolder clips;
    TempFolder destination;
    ASSERT_TRUE(makeClip(clips.path(text("clip.avi")), motionJpegClip()));
    BatchProgram program;
    const QStringList common = {text("--output"), destination.path(), clips.path()};
    const BatchResult first = program.run(common);
    ASSERT_EQ(first.exitCode, 0);
    const QString output = first.outputs().first();
    ASSERT_TRUE(writeBytes(output, QByteArray(300000, 'k')));
    const BatchResult kept = program.run(common);
    EXPECT_EQ(kept.exitCode, 1);
    EXPECT_EQ(readBytes(output), QByteArray(300000, 'k'));
    const BatchResult replaced = program.run(QStringList{text("--existing"), text("replace")} + common);
    EXPECT_EQ(replaced.exitCode, 0);
    EXPECT_NE(readBytes(output), QByteArray(300000, 'k'));
}

TEST(Selection, wrongUsageEndsWithTwo)
{
    BatchProgram program;
    EXPECT_EQ(program.run({}).exitCode, 2);
    EXPECT_EQ(program.run({text("--format"), text("6"), text("/")}).exitCode, 2);
    EXPECT_EQ(program.run({text("/no/such/file.mts")}).exitCode, 2);
}

} // namespace
