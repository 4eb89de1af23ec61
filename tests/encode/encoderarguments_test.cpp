// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/encoderarguments.h"

#include "base/bundle/bundle.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "encode/outputformats.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <cmath>
#include <limits>

namespace tavrix
{

namespace
{

using test::TempFolder;

#define AAC(rate) "-acodec aac -strict experimental -ab " rate " -ac 2 -ar 44100"
#define PCM "-acodec pcm_s16le -ac 2 -ar 48000"
#define ANNEXB "-vbsf h264_mp4toannexb"

struct Row {
    const char* name;
    int out;
    const char* source;
    const char* destination;
    const char* wrapper;
    float framesPerSecond;
    float aspect;
    const char* tail; // arguments behind "-vsync 0", joined with blanks, without "-y" and destination
    bool ends = true; // "-y" and the destination follow
};

struct ExtensionRow {
    const char* name;
    int out;
    const char* codec;
    const char* extension;
};

struct SizeRow {
    const char* name;
    float duration;
    double size;
    int out;
    float estimate;
};

// Resources with two small presets, so that the lists do not depend on the shipped ones.
class EncoderArguments : public testing::TestWithParam<Row>
{
protected:
    void SetUp() override
    {
        previous_ = resourcePath();
        folder_.makeFile(QStringLiteral("res/tools/presets/libx264-0.ffpreset"), "coder=0\nrefs=2\n");
        folder_.makeFile(QStringLiteral("res/tools/presets/appleSd.ffpreset"), "/* x */\nlevel=30\n");
        setResourcePath(folder_.path(QStringLiteral("res")));
    }
    void TearDown() override { setResourcePath(previous_); }

    TempFolder folder_;
    QString previous_;
};

} // namespace

TEST_P(EncoderArguments, AreExact)
{
    const Row& row = GetParam();
    const auto list = encodage(test::text(row.source), test::text(row.destination), test::text(row.wrapper),
                               QStringLiteral("ignored"), row.framesPerSecond, row.out, row.aspect);
    ASSERT_TRUE(list.has_value());
    QStringList expected = {resourcePath() + QStringLiteral("/tools/ffmpeg"),
                            QStringLiteral("-v"),
                            QStringLiteral("1"),
                            QStringLiteral("-i"),
                            test::text(row.source),
                            QStringLiteral("-vsync"),
                            QStringLiteral("0")};
    expected += test::text(row.tail).split(u' ', Qt::SkipEmptyParts);
    if (row.ends) {
        expected += {QStringLiteral("-y"), test::text(row.destination)};
    }
    EXPECT_TEXTS(*list, expected);
}

INSTANTIATE_TEST_SUITE_P(
    SmallScreen, EncoderArguments,
    testing::Values(Row{"Wide", 0, "/M/a b.mts", "/D/o.mp4", "mpegts", 25.0F, 1.78F,
                        "-vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"Narrow", 0, "/M/a.avi", "/D/o.mp4", "avi", 30.0F, 1.333F,
                        "-vcodec mpeg4 -vb 250k -vf scale=368:272,setdar=4:3 " AAC("64k") " -g 25"},
                    Row{"SixtyPictures", 0, "/M/a.mts", "/D/o.mp4", "mpegts", 60.0F, 1.78F,
                        "-r 30000/1001 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"FiftyPictures", 0, "/M/a.mts", "/D/o.mp4", "mpegts", 50.0F, 1.78F,
                        "-r 25/1 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"JustAboveThirty", 0, "/M/a.mts", "/D/o.mp4", "mpegts", 30.0001F, 1.78F,
                        "-r 25/1 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    // 50.2 as a 32-bit float is 50.2000008: its half is above 25.1.
                    Row{"HalfJustAboveTheLimit", 0, "/M/a.mts", "/D/o.mp4", "mpegts", 50.2F, 1.78F,
                        "-r 30000/1001 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"HalfJustBelowTheLimit", 0, "/M/a.mts", "/D/o.mp4", "mpegts", 50.1999F, 1.78F,
                        "-r 25/1 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"NtscKeepsItsRate", 0, "/M/a.mov", "/D/o.mp4", "mov,mp4", 29.97F, 1.78F,
                        "-vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"UnreadableRate", 0, "/M/a.mov", "/D/o.mp4", "mov,mp4", std::nanf(""), 1.78F,
                        "-vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"AspectJustInside", 0, "/M/a.mov", "/D/o.mp4", nullptr, 0.0F, 1.6701F,
                        "-vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 " AAC("64k") " -g 25"},
                    Row{"AspectJustOutside", 0, "/M/a.mov", "/D/o.mp4", nullptr, 0.0F, 1.67F,
                        "-vcodec mpeg4 -vb 250k -vf scale=368:272,setdar=4:3 " AAC("64k") " -g 25"},
                    Row{"AspectTooWide", 0, "/M/a.mov", "/D/o.mp4", nullptr, 0.0F, 1.88F,
                        "-vcodec mpeg4 -vb 250k -vf scale=368:272,setdar=4:3 " AAC("64k") " -g 25"},
                    Row{"AspectIsNoNumber", 0, "/M/a.mov", "/D/o.mp4", nullptr, 0.0F, std::nanf(""),
                        "-vcodec mpeg4 -vb 250k -vf scale=368:272,setdar=4:3 " AAC("64k") " -g 25"}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    H264, EncoderArguments,
    testing::Values(
        Row{"Wide", 1, "/M/a.mts", "/D/o.m4v", "mpegts", 25.0F, 1.77F,
            "-coder 0 -refs 2 -level 30 -vcodec libx264 -vb 1400k -maxrate 1500k -vf scale=640:368,setdar=16:9 " AAC(
                "128k") " -g 25"},
        Row{"Narrow", 1, "/M/a.mts", "/D/o.m4v", "mpegts", 25.0F, 1.33F,
            "-coder 0 -refs 2 -level 30 -vcodec libx264 -vb 1400k -maxrate 1500k -vf scale=480:368,setdar=4:3 " AAC(
                "128k") " -g 25"},
        Row{"RateBeforeThePresets", 1, "/M/a.mts", "/D/o.m4v", "mpegts", 59.94F, 1.77F,
            "-r 30000/1001 -coder 0 -refs 2 -level 30 -vcodec libx264 -vb 1400k -maxrate 1500k -vf "
            "scale=640:368,setdar=16:9 " AAC("128k") " -g 25"}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Rewrap, EncoderArguments,
    testing::Values(
        Row{"Avi", 2, "/M/a.avi", "/D/o.avi", "avi", 60.0F, 1.33F, "-vcodec copy " PCM},
        Row{"UpperCaseMts", 2, "/M/a.MTS", "/D/o.m4v", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " AAC("192k")},
        Row{"M2ts", 2, "/M/a.m2ts", "/D/o.m4v", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " AAC("192k")},
        Row{"M2t", 2, "/M/a.m2t", "/D/o.m4v", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " AAC("192k")},
        Row{"Ts", 2, "/M/a.Ts", "/D/o.m4v", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " AAC("192k")},
        Row{"Mov", 2, "/M/a.mov", "/D/o.m4v", "mov", 60.0F, 1.78F, "-vcodec copy " AAC("192k")},
        Row{"NoExtension", 2, "/M/mts", "/D/o.m4v", "mpegts", 60.0F, 1.78F, "-vcodec copy " AAC("192k")},
        Row{"OtherDestination", 2, "/M/a.mov", "/D/o.mov", "mov", 60.0F, 1.78F, "", false},
        Row{"UpperCaseDestination", 2, "/M/a.mov", "/D/o.AVI", "mov", 60.0F, 1.78F, "", false}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    MovieCopy, EncoderArguments,
    testing::Values(
        Row{"TransportStream", 3, "/M/a.mts", "/D/o.mov", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " PCM},
        Row{"Movie", 3, "/M/a.mov", "/D/o.mov", "mov,mp4,m4a,3gp,3g2,mj2", 60.0F, 1.78F, "-vcodec copy " PCM},
        Row{"MovieInUpperCase", 3, "/M/a.mov", "/D/o.mov", "MOV", 60.0F, 1.78F, "-vcodec copy " PCM},
        Row{"NoWrapper", 3, "/M/a.mov", "/D/o.mov", nullptr, 60.0F, 1.78F, "-vcodec copy " ANNEXB " " PCM},
        Row{"Avi", 3, "/M/a.avi", "/D/o.mov", "avi", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " PCM},
        Row{"IntermediateCodec", 4, "/M/a.mov", "/D/o.mov", "mov", 60.0F, 1.78F, "-vcodec copy " PCM},
        Row{"ProRes", 5, "/M/a.mts", "/D/o.mov", "mpegts", 60.0F, 1.78F, "-vcodec copy " ANNEXB " " PCM},
        Row{"Negative", -1, "/M/a.mov", "/D/o.mov", "mov", 60.0F, 1.78F, "-vcodec copy " PCM},
        Row{"Large", 2147483647, "/M/a.mov", "/D/o.mov", "mov", 60.0F, 1.78F, "-vcodec copy " PCM}),
    test::rowName<Row>);

TEST(EncoderArgumentList, NoneWithoutSourceOrDestination)
{
    const QString path = QStringLiteral("/M/a.mov");
    EXPECT_FALSE(encodage(QString(), path, path, path, 25.0F, 0, 1.0F).has_value());
    EXPECT_FALSE(encodage(path, QString(), path, path, 25.0F, 0, 1.0F).has_value());
}

TEST(EncoderArgumentList, MissingPresetsAddNothing)
{
    const TempFolder folder;
    const QString previous = resourcePath();
    setResourcePath(folder.path());
    const auto list = encodage(QStringLiteral("/M/a.mov"), QStringLiteral("/D/o.m4v"), QStringLiteral("mov"), QString(),
                               25.0F, 1, 1.77F);
    setResourcePath(previous);
    ASSERT_TRUE(list.has_value());
    EXPECT_EQ(list->mid(5, 4).join(u' '), QStringLiteral("-vsync 0 -vcodec libx264"));
}

TEST(EncoderArgumentList, StepsAreLogged)
{
    const test::LogCapture log;
    EXPECT_TRUE(encodage(QStringLiteral("/M/a.mov"), QStringLiteral("/D/o.mov"), QString(), QString(), 25.0F, 3, 1.0F)
                    .has_value());
    EXPECT_EQ(log.lines().join(u'|'), QStringLiteral("encodage            - deb|encodage - fin"));
}

struct LogRow {
    const char* name;
    int out;
    QStringList lists; // the formats of the lines that hold the argument list, in their order
};

class EncoderLog : public testing::TestWithParam<LogRow>
{
protected:
    void TearDown() override
    {
        setDEBUG(0);
        setDEBUGDEVForTests(0);
    }
};

TEST_P(EncoderLog, TellsEveryStepWhileDebugging)
{
    setDEBUG(1);
    setDEBUGDEVForTests(1);
    const test::LogCapture log;
    const auto list = encodage(QStringLiteral("/M/a.mts"), QStringLiteral("/D/o.m4v"), QStringLiteral("mpegts"),
                               QString(), 25.0F, GetParam().out, 1.0F);
    ASSERT_TRUE(list.has_value());
    QStringList lines = log.lines();
    lines.removeIf([](const QString& line) {
        return line.startsWith(QStringLiteral("tmpStr def : ")) || line.startsWith(QStringLiteral("encoding : ")) ||
               line.startsWith(QStringLiteral("returnedMArray : "));
    });
    QStringList expected = {QStringLiteral("encodage            - deb"),
                            QStringLiteral("srcPathStr          : /M/a.mts"),
                            QStringLiteral("dstPathStr          : /D/o.m4v"),
                            formatText(QStringLiteral("outInt              : %d"), {GetParam().out})};
    for (const QString& format : GetParam().lists) {
        // Only the first line of the movie branch shows an unfinished list.
        const bool atStart = format.startsWith(QStringLiteral("argsArray 3deb"));
        expected.append(formatText(format, {atStart ? list->mid(0, 7) : *list}));
    }
    expected += {formatText(QStringLiteral("argsArray fin       : %@"), {*list}), QStringLiteral("encodage - fin")};
    EXPECT_TEXTS(lines, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, EncoderLog,
    testing::Values(
        LogRow{"SmallScreen", 0, {QStringLiteral("argsArray fin - 0   : %@")}},
        LogRow{"H264", 1, {QStringLiteral("argsArray fin - 1   : %@")}},
        LogRow{"Rewrap", 2, {QStringLiteral("argsArray fin - 2   : %@")}},
        LogRow{"Movie", 3, {QStringLiteral("argsArray 3deb: %@"), QStringLiteral("argsArray deb - 3   : %@")}},
        LogRow{"ProRes", 5, {QStringLiteral("argsArray 3deb: %@"), QStringLiteral("argsArray deb - 3   : %@")}}),
    test::rowName<LogRow>);

class Extensions : public testing::TestWithParam<ExtensionRow>
{
};

TEST_P(Extensions, FollowTheFormat)
{
    EXPECT_TEXT(encDstExtensionStr(GetParam().out, test::text(GetParam().codec)), test::text(GetParam().extension));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, Extensions,
    testing::Values(ExtensionRow{"SmallScreen", 0, "mjpeg", "mp4"}, ExtensionRow{"H264", 1, "mjpeg", "m4v"},
                    ExtensionRow{"RewrapJpeg", 2, "mjpeg", "avi"}, ExtensionRow{"RewrapJpegB", 2, "mjpegb", "avi"},
                    ExtensionRow{"RewrapUpperCase", 2, "MJPEG", "m4v"}, ExtensionRow{"RewrapOther", 2, "h264", "m4v"},
                    ExtensionRow{"RewrapNothing", 2, nullptr, "m4v"}, ExtensionRow{"Movie", 3, "h264", "mov"},
                    ExtensionRow{"Aic", 4, "h264", "mov"}, ExtensionRow{"ProRes", 5, "h264", "mov"},
                    ExtensionRow{"NoFormat", outputFormatCount, "h264", "mov"},
                    ExtensionRow{"Negative", -1, "h264", "mov"}),
    test::rowName<ExtensionRow>);

class SizeEstimates : public testing::TestWithParam<SizeRow>
{
};

TEST_P(SizeEstimates, FollowTheFormat)
{
    EXPECT_EQ(encDstPoidsEstimatif(GetParam().duration, GetParam().size, GetParam().out), GetParam().estimate);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, SizeEstimates,
    testing::Values(SizeRow{"SmallScreen", 240.0F, 500.0, 0, 10.0F}, SizeRow{"H264", 60.0F, 500.0, 1, 12.0F},
                    SizeRow{"Rewrap", 60.0F, 500.25, 2, 500.25F}, SizeRow{"Movie", 60.0F, 500.0, 3, 511.0F},
                    SizeRow{"Aic", 60.0F, 500.0, 4, 6.0F}, SizeRow{"ProRes", 60.0F, 500.0, 5, 6.0F},
                    SizeRow{"Negative", 60.0F, 500.0, -1, 6.0F}, SizeRow{"Long", 1e7F, 0.0, 0, 416666.656F},
                    SizeRow{"UnknownSize", 60.0F, -1.0, 3, 10.0F}, SizeRow{"NoDuration", 0.0F, 0.0, 0, 0.0F}),
    test::rowName<SizeRow>);

TEST(SizeEstimate, IsLogged)
{
    const test::LogCapture log;
    EXPECT_EQ(encDstPoidsEstimatif(60.0F, 0.0, 1), 12.0F);
    EXPECT_EQ(log.lines().join(u'|'), QStringLiteral("encDstPoidsEstimatif= 12.000000"));
}

} // namespace tavrix
