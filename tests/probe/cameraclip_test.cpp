// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "probe/aspectclass.h"
#include "probe/cameraclip.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct VerdictRow {
    const char* name;
    const char* wrapper; // null: missing
    const char* codec;
    int width; // 0: missing
    int height;
    const char* interlacing;
    const char* reason; // null: accepted
};

MediaInfoRecord recordOf(const VerdictRow& row)
{
    MediaInfoRecord infos;
    if (row.wrapper != nullptr) {
        infos.insert(record::wrapper, text(row.wrapper));
    }
    if (row.codec != nullptr) {
        infos.insert(record::v0_codec, text(row.codec));
    }
    if (row.width != 0) {
        infos.insert(record::v0_width, row.width);
    }
    if (row.height != 0) {
        infos.insert(record::v0_height, row.height);
    }
    return infos;
}

class Verdict : public testing::TestWithParam<VerdictRow>
{
protected:
    Verdict()
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setLanguage(QStringLiteral("en"));
    }
};

const char* const noVideo = "no video that can be read";
const char* const interlaced = "the picture is interlaced";

const VerdictRow verdictRows[] = {
    {"AvchdLite", "mpegts", "h264", 1280, 720, "PFF", nullptr},
    {"SmallTransportStream", "mpegts", "h264", 320, 240, "PFF", nullptr},
    {"CodecBeginsWithH264", "mpegts", "h264 (High)", 1280, 720, "PFF", nullptr},
    {"QuickTimeJpeg", "mov,mp4,m4a,3gp,3g2,mj2", "mjpeg", 640, 480, "PFF", nullptr},
    {"QuickTimeH264", "mov,mp4,m4a,3gp,3g2,mj2", "h264", 1280, 720, "PFF", nullptr},
    {"AviJpeg", "avi", "mjpeg", 640, 480, "PFF", nullptr},
    {"AviJpegBeginsOnly", "avi2", "mjpegb", 640, 480, "PFF", nullptr},
    {"OneLineTooHigh", "mpegts", "h264", 1280, 721, "PFF", "1280x721 is larger than 1280x720"},
    {"OneColumnTooWide", "mpegts", "h264", 1281, 720, "PFF", "1281x720 is larger than 1280x720"},
    {"FullHd", "mpegts", "h264", 1920, 1080, "PFF", "1920x1080 is larger than 1280x720"},
    {"Upright", "mov,mp4,m4a,3gp,3g2,mj2", "h264", 720, 1280, "PFF",
     "upright 720x1280: its pictures are stored higher than 720 lines"},
    {"UprightAndSmall", "mov,mp4,m4a,3gp,3g2,mj2", "h264", 464, 848, "PFF",
     "upright 464x848: its pictures are stored higher than 720 lines"},
    {"UprightAndWide", "mpegts", "h264", 1440, 1920, "PFF", "1440x1920 is larger than 1280x720"},
    {"TopFieldFirst", "mpegts", "h264", 1280, 720, "TFF", interlaced},
    {"BottomFieldFirst", "mpegts", "h264", 1280, 720, "BFF", interlaced},
    {"InterlacingUnknown", "mpegts", "h264", 1280, 720, "", interlaced},
    {"TransportStreamIsNoPrefix", "mpegtsraw", "h264", 1280, 720, "PFF",
     "h264 video in an mpegtsraw file is not supported"},
    {"JpegInTransportStream", "mpegts", "mjpeg", 640, 480, "PFF", "mjpeg video in an mpegts file is not supported"},
    {"H264InAvi", "avi", "h264", 640, 480, "PFF", "h264 video in an avi file is not supported"},
    {"Matroska", "matroska", "h264", 640, 480, "PFF", "h264 video in an matroska file is not supported"},
    {"Mpeg2InQuickTime", "mov", "mpeg2video", 640, 480, "PFF", "mpeg2video video in an mov file is not supported"},
    {"CodecInCapitals", "mpegts", "H264", 640, 480, "PFF", "H264 video in an mpegts file is not supported"},
    {"NoWidth", "mpegts", "h264", 0, 720, "PFF", noVideo},
    {"NoHeight", "mpegts", "h264", 1280, 0, "PFF", noVideo},
    {"NoWrapper", nullptr, "h264", 1280, 720, "PFF", noVideo},
    {"NoCodec", "mpegts", nullptr, 1280, 720, "PFF", noVideo},
    {"NothingFound", nullptr, nullptr, 0, 0, "PFF", noVideo},
};

} // namespace

TEST_P(Verdict, IsThatOfTheTable)
{
    const ClipVerdict verdict = cameraClipVerdict(recordOf(GetParam()), text(GetParam().interlacing));
    EXPECT_EQ(verdict.accepted, GetParam().reason == nullptr);
    EXPECT_TEXT(verdict.reason, text(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(CameraClip, Verdict, testing::ValuesIn(verdictRows), rowName<VerdictRow>);

TEST(CameraClip, NoRecordIsNoClip)
{
    EXPECT_FALSE(cameraClipVerdict(std::nullopt, QStringLiteral("PFF")).accepted);
}

TEST(CameraClip, IsAcceptedInEveryLanguage)
{
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    for (const QString& language : availableLanguages()) {
        setLanguage(language);
        EXPECT_TRUE(cameraClipVerdict(recordOf(verdictRows[0]), QStringLiteral("PFF")).accepted)
            << language.toStdString();
    }
    setLanguage(QStringLiteral("en"));
}

namespace
{

struct AspectRow {
    const char* name;
    int width;
    int height;
    float aspect;
    const char* size;
};

class Aspect : public testing::TestWithParam<AspectRow>
{
};

// 1.6, 1.4 and 1.8 lie on the edges of the classes: comparing in single precision would move 1.6 and 1.4.
const AspectRow aspectRows[] = {
    {"Wide", 1280, 720, 1.77F, "320x180"},
    {"Classic", 640, 480, 1.33F, "240x180"},
    {"BetweenKept", 720, 480, 1.5F, "240x180"},
    {"SixteenToTen", 640, 400, 1.77F, "320x180"},
    {"JustBelowSixteenToTen", 636, 400, 1.59F, "240x180"},
    {"FourteenToTen", 720, 512, 1.33F, "240x180"},
    {"JustAboveFourteenToTen", 722, 512, 1.41F, "240x180"},
    {"EighteenToTen", 720, 400, 1.77F, "320x180"},
    {"Scope", 1280, 544, 2.35F, "240x180"},
    {"Square", 480, 480, 1.0F, "240x180"},
    {"Tall", 480, 640, 0.75F, "240x180"},
    {"NoWidth", 0, 720, 1.77F, "320x180"},
    {"NoHeight", 1280, 0, 1.77F, "320x180"},
};

} // namespace

TEST_P(Aspect, IsSnappedAndGivesTheThumbnailSize)
{
    const VerdictRow row = {"", nullptr, nullptr, GetParam().width, GetParam().height, "", nullptr};
    const float aspect = clipAspect(recordOf(row));
    EXPECT_FLOAT_EQ(aspect, GetParam().aspect);
    EXPECT_TEXT(thumbnailSize(aspect), text(GetParam().size));
}

INSTANTIATE_TEST_SUITE_P(CameraClip, Aspect, testing::ValuesIn(aspectRows), rowName<AspectRow>);

TEST(AspectClass, IsThatOfTheDecimalRatioWithinTheTolerance)
{
    EXPECT_EQ(aspectClass(wideAspect), AspectClass::Wide);
    EXPECT_EQ(aspectClass(1.68F), AspectClass::Wide);
    EXPECT_EQ(aspectClass(1.66F), AspectClass::Other);
    EXPECT_EQ(aspectClass(classicAspect), AspectClass::Classic);
    EXPECT_EQ(aspectClass(1.42F), AspectClass::Classic);
    EXPECT_EQ(aspectClass(1.44F), AspectClass::Other);
    EXPECT_EQ(aspectClass(1.78F, 0.02), AspectClass::Wide);
    EXPECT_EQ(aspectClass(1.80F, 0.02), AspectClass::Other);
    EXPECT_EQ(aspectClass(1.33F, 0.02), AspectClass::Classic);
}

TEST(CameraClip, HeightOfZeroInTheRecordIsNoDivision)
{
    MediaInfoRecord infos;
    infos.insert(record::v0_width, 640);
    infos.insert(record::v0_height, 0);
    EXPECT_FLOAT_EQ(clipAspect(infos), 1.77F);
}

namespace
{

struct LetterRow {
    const char* name;
    const char* line;
    const char* letter;
};

class Letter : public testing::TestWithParam<LetterRow>
{
};

const LetterRow letterRows[] = {
    {"Progressive", "YUV4MPEG2 W640 H480 F25:1 Ip A0:0", "p"},
    {"TopFirst", "YUV4MPEG2 W640 H480 F25:1 It A0:0", "t"},
    {"BottomFirst", "YUV4MPEG2 W640 H480 F25:1 Ib A0:0", "b"},
    {"FirstOccurrence", "YUV4MPEG2 It Ib", "t"},
    {"WholeLineWithout", "YUV4MPEG2 W640", "YUV4MPEG2 W640"},
    {"WholeLineOfOneLetter", "t", "t"},
    {"NothingBehind", "YUV4MPEG2 I", ""},
    {"EmptyLine", "", ""},
};

} // namespace

TEST_P(Letter, IsTheOneBehindTheMark)
{
    EXPECT_TEXT(interlacingLetter(text(GetParam().line)), text(GetParam().letter));
}

INSTANTIATE_TEST_SUITE_P(CameraClip, Letter, testing::ValuesIn(letterRows), rowName<LetterRow>);

TEST(CameraClip, DescriptionTellsWhatIsKnown)
{
    MediaInfoRecord infos;
    EXPECT_TRUE(clipDescription(infos).isEmpty());
    infos.insert(record::v0_codec, QStringLiteral("h264"));
    infos.insert(record::v0_width, 1280);
    infos.insert(record::v0_height, 720);
    infos.insert(record::v0_fps, QVariant(29.97F));
    EXPECT_TEXT(clipDescription(infos), QStringLiteral("H.264 · 1280 × 720 · 29.97 fps"));
    infos.insert(record::w_duration, 65);
    EXPECT_TEXT(clipDescription(infos), QStringLiteral("H.264 · 1280 × 720 · 29.97 fps · 1:05"));
    // The unit of a clock is no rate: "90 fps" was shown.
    infos.insert(record::v0_meanRate, 10.51F);
    EXPECT_TEXT(clipDescription(infos), QStringLiteral("H.264 · 1280 × 720 · 10.51 fps · 1:05"));
    infos.insert(record::v0_meanRate, 0.0F);
    EXPECT_TEXT(clipDescription(infos), QStringLiteral("H.264 · 1280 × 720 · uneven rate · 1:05"));
}

struct MeanRow {
    const char* name;
    const char* line;
    std::optional<float> mean;
};

class MeanRate : public testing::TestWithParam<MeanRow>
{
};

TEST_P(MeanRate, StandsBesideTheUnitOfAClock)
{
    const QString banner = QStringLiteral("Input #0, mov, from 'k tbr':\n") + text(GetParam().line) + QLatin1Char('\n');
    EXPECT_EQ(meanRate(banner), GetParam().mean);
}

const MeanRow meanRows[] = {
    {"Clock", "    Stream #0.0(eng): Video: h264, yuv420p, 1280x720, 10.51 fps, 90k tbr, 90k tbn, 180k tbc", 10.51F},
    {"ClockAtTheEnd", "    Stream #0.0: Video: h264, yuv420p, 1280x720, 50 fps, 90k tbr", 50.0F},
    {"NoMean", "    Stream #0.0: Video: h264, yuv420p, 1280x720, 90k tbr, 90k tbn", 0.0F},
    {"MeanIsAClockToo", "    Stream #0.0: Video: h264, yuv420p, 1280x720, 90k fps, 90k tbr", 0.0F},
    {"Pictures", "    Stream #0.0: Video: h264, yuv420p, 1280x720, 59.94 fps, 59.94 tbr, 90k tbn", std::nullopt},
    {"NoPicture", "    Stream #0.0: Audio: ac3, 48000 Hz, stereo", std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(CameraClip, MeanRate, testing::ValuesIn(meanRows), rowName<MeanRow>);
