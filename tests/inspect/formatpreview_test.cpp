// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/formatpreview.h"

#include "encode/outputformats.h"
#include "inspecttest.h"
#include "testpaths.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

TEST(AskedPicture, IsReadFromTheArguments)
{
    const AskedPicture asked = askedPicture({QStringLiteral("ffmpeg"), QStringLiteral("-i"), QStringLiteral("-r"),
                                             QStringLiteral("30000/1001"), QStringLiteral("-vf"),
                                             QStringLiteral("scale=480:272,setdar=16:9")});
    EXPECT_EQ(asked.width, 480);
    EXPECT_EQ(asked.height, 272);
    EXPECT_DOUBLE_EQ(asked.rate, 30000.0 / 1001);
    EXPECT_DOUBLE_EQ(askedPicture({QStringLiteral("-r"), QStringLiteral("25/1")}).rate, 25);
    EXPECT_EQ(askedPicture({QStringLiteral("-vcodec"), QStringLiteral("copy")}).width, 0);
    EXPECT_DOUBLE_EQ(askedPicture({QStringLiteral("-r")}).rate, 0);
}

TEST(SecondPassPicture, IsThatOfTheSettingsFile)
{
    const QString presets = QStringLiteral(TAVRIX_BUILD_RESOURCES "/presets/");
    for (const int out : {4, 5}) {
        const AskedPicture asked = secondPassPicture(presets + QStringLiteral("1280x720p"), out);
        EXPECT_EQ(asked.width, 1280);
        EXPECT_EQ(asked.height, 720);
    }
    EXPECT_EQ(secondPassPicture(presets + QStringLiteral("1280x720p"), 3).width, 0);
    EXPECT_EQ(secondPassPicture(QStringLiteral("/nonexistent"), 4).width, 0);
    const TempFolder folder;
    EXPECT_EQ(secondPassPicture(folder.makeFile(QStringLiteral("damaged"), "<plist"), 4).width, 0);
}

struct PreviewRow {
    const char* name;
    int out;
    int width;
    int height;
    double rate;
    const char* file;
};

class FormatPreviews : public InspectTest, public testing::WithParamInterface<PreviewRow>
{
};

TEST_P(FormatPreviews, AreWhatTheFormatMakes)
{
    const QList<FormatPreview> previews = formatPreviews(describedClip(), QStringLiteral("/clips/00001.MTS"));
    ASSERT_EQ(previews.size(), outputFormatCount);
    const FormatPreview& preview = previews.at(GetParam().out);
    EXPECT_EQ(preview.out, GetParam().out);
    EXPECT_EQ(preview.width, GetParam().width);
    EXPECT_EQ(preview.height, GetParam().height);
    EXPECT_NEAR(preview.rate, GetParam().rate, 0.001);
    EXPECT_EQ(preview.name, text(GetParam().file));
    EXPECT_GT(preview.bytes, 200000);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FormatPreviews,
    testing::Values(PreviewRow{"smallScreen", 0, 480, 272, 29.97, "clip-2012-05-01 12;34;56-00001.mp4"},
                    PreviewRow{"h264", 1, 640, 368, 29.97, "clip-2012-05-01 12;34;56-00001.m4v"},
                    PreviewRow{"rewrapped", 2, 1280, 720, 59.94, "clip-2012-05-01 12;34;56-00001.m4v"},
                    PreviewRow{"movieCopy", 3, 1280, 720, 59.94, "clip-2012-05-01 12;34;56-00001.mov"},
                    PreviewRow{"intermediate", 4, 1280, 720, 59.94, "clip-2012-05-01 12;34;56-00001.mov"},
                    PreviewRow{"prores", 5, 1280, 720, 59.94, "clip-2012-05-01 12;34;56-00001.mov"}),
    rowName<PreviewRow>);

// A phone's clip of 10.5 pictures a second, told as 90 because its times are that fine, was said to become 6 times as
// large as it did.
TEST_F(InspectTest, UnevenPicturesAreCountedInWhatIsKept)
{
    Inspection clip = describedClip();
    clip.infos.insert(record::v0_fps, 90.0F);
    const qint64 even = formatPreviews(clip, clip.path).at(5).bytes;
    clip.shown->streams.front().meanRate = {21, 2};
    const QList<FormatPreview> previews = formatPreviews(clip, clip.path);
    EXPECT_DOUBLE_EQ(previews.at(5).rate, 10.5);
    EXPECT_DOUBLE_EQ(previews.at(3).rate, 10.5);
    EXPECT_NEAR(previews.at(1).rate, 29.97, 0.01);
    EXPECT_LT(previews.at(5).bytes, even / 6);
}

TEST_F(InspectTest, NoFormatIsPreviewedForAClipThatIsLeftOut)
{
    Inspection clip = describedClip();
    clip.verdict = {false, QStringLiteral("too large")};
    EXPECT_TRUE(formatPreviews(clip, clip.path).isEmpty());
}

} // namespace
