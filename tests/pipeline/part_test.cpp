// SPDX-License-Identifier: GPL-3.0-or-later
// A part of a clip is shown and heard as the clip shows it there, whatever it becomes.
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/convert.h"
#include "pipeline/numberedclip.h"
#include "pipeline/words.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <gtest/gtest.h>

#include <QFileInfo>

#include <ostream>

using namespace tavrix::test;

namespace
{

struct SourceRow {
    const char* name;
    const char* extension;
    const char* codecs;
};

std::ostream& operator<<(std::ostream& out, const SourceRow& row)
{
    return out << row.name;
}

const SourceRow sources[] = {
    {"transportStream", "MTS", "-c:v libx264 -preset ultrafast -bf 2 -g 12 -qp 20 -pix_fmt yuv420p -c:a ac3 -f mpegts"},
    {"motionJpeg", "avi", "-c:v mjpeg -q:v 3 -pix_fmt yuvj422p -c:a pcm_u8 -f avi"},
    {"movie", "mov", "-c:v libx264 -preset ultrafast -bf 2 -g 12 -qp 20 -pix_fmt yuv420p -c:a aac -f mov"},
    {"movieOfPictures", "mov", "-c:v mjpeg -q:v 3 -pix_fmt yuvj420p -c:a pcm_s16le -f mov"},
};

constexpr int rate = 25;
constexpr int pictures = 100;

class Part : public ::testing::TestWithParam<SourceRow>
{
protected:
    Part()
    {
        NumberedClip clip;
        clip.pictures = pictures;
        clip.soundFrom = 2;
        clip.soundTo = 2.4;
        clip.codecs = words(GetParam().codecs);
        source = folder.path(text("clip.") + text(GetParam().extension));
        EXPECT_TRUE(makeNumberedClip(source, clip));
    }

    // Pictures [first, last) of the clip; false when the program made none.
    bool makePart(int first, int last, const QString& part)
    {
        return runTool(text(TAVRIX_BUILD_BIN "/tavrix-inspect"),
                       {text("--export"), text("mov"), text("--from"), QString::number(double(first) / rate),
                        text("--to"), QString::number(double(last) / rate), text("-o"), part, source});
    }

    static std::vector<int> range(int first, int last)
    {
        std::vector<int> numbers;
        for (int number = first; number < last; ++number) {
            numbers.push_back(number);
        }
        return numbers;
    }

    static std::vector<int> numbersOf(const QString& path)
    {
        std::vector<int> numbers;
        for (const ShownPicture& picture : shownPictures(path)) {
            numbers.push_back(picture.number);
        }
        return numbers;
    }

    const TempFolder folder;
    QString source;
};

TEST_P(Part, HoldsExactlyItsPictures)
{
    const std::pair<int, int> parts[] = {{0, 100}, {0, 1}, {1, 2}, {11, 12}, {12, 13}, {17, 60}, {40, 100}, {99, 100}};
    for (const auto& [first, last] : parts) {
        const QString part = folder.path(text("part%1-%2.mov").arg(first).arg(last));
        ASSERT_TRUE(makePart(first, last, part)) << first << " to " << last;
        EXPECT_EQ(numbersOf(part), range(first, last)) << first << " to " << last;
    }
}

TEST_P(Part, BecomesTheSameInEveryFormat)
{
    const QByteArray before = readBytes(source).value_or(QByteArray());
    const QString part = folder.path(text("part.mov"));
    ASSERT_TRUE(makePart(33, 78, part));
    EXPECT_NEAR(shownSound(part).onset(), 2 - 33.0 / rate, 0.03);
    for (const int format : {0, 1, 2, 3, 4, 5}) {
        const Converted converted = convertClip(part, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        EXPECT_EQ(numbersOf(converted.output), range(33, 78)) << "format " << format;
        const ShownSound sound = shownSound(converted.output);
        EXPECT_NEAR(sound.onset(), 2 - 33.0 / rate, 0.03) << "format " << format;
        EXPECT_NEAR(sound.duration(), 45.0 / rate, 0.06) << "format " << format;
    }
    EXPECT_EQ(readBytes(source), before);
}

INSTANTIATE_TEST_SUITE_P(Sources, Part, ::testing::ValuesIn(sources),
                         [](const auto& row) { return std::string(row.param.name); });

// From the command line to the output, with the name and the dates of the clip.
TEST(PartOfABatch, IsWhatIsConverted)
{
    TempFolder folder;
    ClipRequest request = avchdLiteClip();
    request.seconds = 4;
    const QString clip = folder.path(text("00001.MTS"));
    ASSERT_TRUE(makeClip(clip, request));
    const QByteArray before = readBytes(clip).value_or(QByteArray());
    BatchProgram program;
    const QString out = folder.path(text("out"));
    const BatchResult result = program.run({text("--from"), text("0:01"), text("--to"), text("2.5"), text("--format"),
                                            text("3"), text("--output"), out, text("--json"), clip});
    ASSERT_EQ(result.exitCode, 0);
    ASSERT_EQ(result.outputs().size(), 1);
    const QString output = result.outputs().first();
    EXPECT_TRUE(QFileInfo(output).fileName().endsWith(text("-00001.mov"))) << output.toStdString();
    EXPECT_NEAR(secondsOf(probed(output).value(text("format")).toObject(), "duration"), 1.5, 0.05);
    const QJsonObject part = result.named(text("row-finished")).first().value(text("part")).toObject();
    EXPECT_EQ(part.value(text("from")).toDouble(), 1);
    EXPECT_EQ(part.value(text("to")).toDouble(), 2.5);
    EXPECT_EQ(readBytes(clip), before);
    EXPECT_EQ(filesBelow(folder.path()).size(), 2) << "the clip and its output";
}

TEST(PartOfABatch, BehindTheClipsEndFails)
{
    TempFolder folder;
    ClipRequest request = avchdLiteClip();
    request.seconds = 2;
    const QString clip = folder.path(text("00001.MTS"));
    ASSERT_TRUE(makeClip(clip, request));
    BatchProgram program;
    const BatchResult result = program.run({text("--from"), text("1:00"), text("--format"), text("3"), text("--output"),
                                            folder.path(text("out")), text("--json"), clip});
    EXPECT_EQ(result.exitCode, 1);
    const QJsonObject row = result.named(text("row-finished")).first();
    EXPECT_EQ(row.value(text("reason")).toString(), text("the part lies behind the end of the clip (0:02)"));
}

} // namespace
