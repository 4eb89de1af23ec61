// SPDX-License-Identifier: GPL-3.0-or-later
#include "cameramovietest.h"

#include <QDataStream>
#include <QFile>

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::test;

namespace
{

const QString plain = QStringLiteral("1280x720p");
const QString boxed = QStringLiteral("1280x720pLetterbox");

class MovencoderPicture : public CameraMovieTest<24>
{
};

void expectSameTimes(const QMap<QString, QString>& actual, const QMap<QString, QString>& expected)
{
    for (const char* key : {"nb_read_frames", "start_time", "r_frame_rate"}) {
        EXPECT_EQ(actual.value(QLatin1String(key)).toStdString(), expected.value(QLatin1String(key)).toStdString())
            << key;
    }
    constexpr double tick = 1.0 / 90'000;
    EXPECT_NEAR(actual.value(QStringLiteral("duration")).toDouble(),
                expected.value(QStringLiteral("duration")).toDouble(), tick);
    EXPECT_EQ(actual.value(QStringLiteral("audio.duration")).toStdString(),
              expected.value(QStringLiteral("audio.duration")).toStdString());
}

void expectKept(const QMap<QString, QString>& actual, const QMap<QString, QString>& expected)
{
    for (const char* key : {"color_space", "color_transfer", "color_primaries", "sample_aspect_ratio", "TAG:timecode",
                            "TAG:creation_time", "format.TAG:creation_time"}) {
        EXPECT_FALSE(expected.value(QLatin1String(key)).isEmpty()) << key;
        EXPECT_EQ(actual.value(QLatin1String(key)).toStdString(), expected.value(QLatin1String(key)).toStdString())
            << key;
    }
}

struct FormatRow {
    const char* name;
    const char* format;
    const char* codec;
    const char* tag;
    double leastPsnr;
};

class MovencoderFormats : public MovencoderPicture, public testing::WithParamInterface<FormatRow>
{
};

TEST_P(MovencoderFormats, CameraClipKeepsAllButItsCodec)
{
    const FormatRow& row = GetParam();
    const ToolResult result = movencode(settingsPath(plain), QLatin1String(row.format), camera(), output());
    ASSERT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_EQ(result.errors.toStdString(), "");
    EXPECT_EQ(decodeErrors(output()).toStdString(), "");

    const auto source = probe(camera());
    const auto made = probe(output());
    EXPECT_EQ(source.value(QStringLiteral("nb_read_frames")), QStringLiteral("24"));
    EXPECT_EQ(made.value(QStringLiteral("codec_name")).toStdString(), row.codec);
    EXPECT_EQ(made.value(QStringLiteral("codec_tag_string")).toStdString(), row.tag);
    EXPECT_EQ(made.value(QStringLiteral("field_order")), QStringLiteral("progressive"));
    expectSameTimes(made, source);
    expectKept(made, source);
    const QByteArray sound = soundBytes(camera());
    EXPECT_GT(sound.size(), 10'000);
    EXPECT_TRUE(soundBytes(output()) == sound);
    EXPECT_GE(psnr(output(), camera(), QStringLiteral("[0:v]format=yuv420p[a];[a][1:v]psnr")), row.leastPsnr);
}

INSTANTIATE_TEST_SUITE_P(Both, MovencoderFormats,
                         testing::Values(FormatRow{"AppleIntermediate", "aic", "aic", "icod", 40.0},
                                         FormatRow{"ProRes", "prores", "prores", "apcn", 42.0}),
                         [](const testing::TestParamInfo<FormatRow>& row) { return std::string(row.param.name); });

TEST_F(MovencoderPicture, ProgressLinesRiseToOneHundred)
{
    const ToolResult result = movencode(settingsPath(plain), QStringLiteral("aic"), camera(), output());
    ASSERT_EQ(result.status, 0);
    int last = -1;
    QList<QByteArray> lines = result.output.split('\n');
    ASSERT_EQ(lines.takeLast(), QByteArray()) << "the last line is not complete";
    for (const QByteArray& line : lines) {
        ASSERT_TRUE(line.startsWith("Processing (") && line.endsWith("%)")) << line.constData();
        const int percent = line.mid(12, line.size() - 14).toInt();
        EXPECT_GE(percent, last);
        last = percent;
    }
    EXPECT_EQ(last, 100);
}

TEST_F(MovencoderPicture, EditedMovieKeepsItsPicturesAndItsEnd)
{
    const QString cut = folder_.path(QStringLiteral("cut.mov"));
    ASSERT_TRUE(
        makeMedia({QStringLiteral("-ss"), QStringLiteral("0.09"), QStringLiteral("-i"), camera(), QStringLiteral("-t"),
                   QStringLiteral("0.2"), QStringLiteral("-c"), QStringLiteral("copy"), cut}));
    const ToolResult result = movencode(settingsPath(plain), QStringLiteral("aic"), cut, output());
    ASSERT_EQ(result.status, 0) << result.errors.constData();
    const auto source = probe(cut);
    EXPECT_LT(source.value(QStringLiteral("nb_read_frames")).toInt(), 24);
    expectSameTimes(probe(output()), source);
    EXPECT_GE(psnr(output(), cut, QStringLiteral("[0:v][1:v]psnr")), 40.0);
}

// Packets at the border of two stretches overlap in time; the muxer wants them in order.
TEST_F(MovencoderPicture, SoundJoinedFromTwoStretchesKeepsItsTime)
{
    const QString whole = folder_.path(QStringLiteral("whole.mov"));
    // The delay gives the sound track an edit list of two entries, which are then rewritten.
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=64x64:r=25:d=2"), QStringLiteral("-itsoffset"),
                           QStringLiteral("0.5"), QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("sine=d=2:r=48000"), QStringLiteral("-c:v"), QStringLiteral("mjpeg"),
                           QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"), whole}));
    auto bytes = readBytes(whole);
    ASSERT_TRUE(bytes);
    constexpr qsizetype typeAndVersion = 8;
    const qsizetype list = bytes->lastIndexOf("elst");
    ASSERT_EQ(bytes->mid(list + typeAndVersion, 4), QByteArray("\0\0\0\2", 4));
    QByteArray edits;
    QDataStream(&edits, QIODevice::WriteOnly)
        << qint32(700) << qint32(4800) << qint32(65536) << qint32(900) << qint32(48000) << qint32(65536);
    bytes->replace(list + typeAndVersion + 4, edits.size(), edits);
    const QString joined = folder_.makeFile(QStringLiteral("joined.mov"), *bytes);
    const ToolResult result = movencode(settingsPath(plain), QStringLiteral("aic"), joined, output());
    ASSERT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_EQ(decodeErrors(output()).toStdString(), "");
    EXPECT_NEAR(probe(output()).value(QStringLiteral("audio.duration")).toDouble(), 1.6, 0.03);
}

TEST_F(MovencoderPicture, RunningRowChoosesTheFormat)
{
    const QString home = folder_.path(QStringLiteral("home"));
    const QString list = QStringLiteral("<plist version=\"1.0\"><dict><key>processEncDico</key><dict><key>out</key>"
                                        "<integer>4</integer><key>dstPathStr</key><string>") +
                         output() + QStringLiteral("</string><key>purgePathStr1</key><string>") + camera() +
                         QStringLiteral("</string></dict></dict></plist>");
    folder_.makeFile(QStringLiteral("home/Library/Preferences/org.tavrix.Tavrix.plist"), list.toUtf8());
    const EnvironmentChange change("HOME", home.toUtf8().constData());
    ASSERT_EQ(movencode(settingsPath(plain), QString(), camera(), output()).status, 0);
    EXPECT_EQ(probe(output()).value(QStringLiteral("codec_name")), QStringLiteral("aic"));
    const QString other = folder_.path(QStringLiteral("other.mov"));
    ASSERT_EQ(movencode(settingsPath(plain), QString(), camera(), other).status, 0);
    EXPECT_EQ(probe(other).value(QStringLiteral("codec_name")), QStringLiteral("prores"));
}

// The running row's first pass, whose name carries no more weight than the record that goes with it.
TEST_F(MovencoderPicture, FirstPassOfTheRunningRowVanishesAndNoOtherInput)
{
    const QString firstPass = folder_.path(QStringLiteral("out_MASTER.mov"));
    const QString home = folder_.path(QStringLiteral("home"));
    const QString list = QStringLiteral("<plist version=\"1.0\"><dict><key>processEncDico</key><dict><key>out</key>"
                                        "<integer>4</integer><key>dstPathStr</key><string>%1</string>"
                                        "<key>purgePathStr1</key><string>%2</string></dict></dict></plist>")
                             .arg(output(), firstPass);
    folder_.makeFile(QStringLiteral("home/Library/Preferences/org.tavrix.Tavrix.plist"), list.toUtf8());
    const EnvironmentChange change("HOME", home.toUtf8().constData());
    ASSERT_TRUE(QFile::copy(camera(), firstPass));

    const QString other = folder_.path(QStringLiteral("other.mov"));
    ASSERT_EQ(movencode(settingsPath(plain), QString(), firstPass, other).status, 0);
    EXPECT_TRUE(QFile::exists(firstPass)) << "the record is of another output";
    ASSERT_EQ(movencode(settingsPath(plain), QStringLiteral("aic"), firstPass, output()).status, 0);
    EXPECT_TRUE(QFile::exists(firstPass)) << "somebody chose the format by hand";
    ASSERT_EQ(movencode(settingsPath(plain), QString(), firstPass, output()).status, 0);
    EXPECT_FALSE(QFile::exists(firstPass));
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QStringLiteral("24"));
    EXPECT_EQ(decodeErrors(output()).toStdString(), "");
}

TEST_F(MovencoderPicture, BytesPerFrameBoundTheSize)
{
    const QString settings = folder_.makeFile(
        QStringLiteral("settings"), QByteArrayLiteral("<plist version=\"1.0\"><dict><key>default</key><integer>4"
                                                      "</integer><key>4</key><dict><key>bytesPerFrame</key><integer>"
                                                      "100000</integer></dict></dict></plist>"));
    ASSERT_EQ(movencode(settings, QString(), camera(), output()).status, 0);
    const ToolResult sizes = runProgram(
        QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                    QStringLiteral("v"), QStringLiteral("-show_entries"), QStringLiteral("packet=size"),
                                    QStringLiteral("-of"), QStringLiteral("csv=p=0"), output()});
    const QList<QByteArray> lines = sizes.output.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 24);
    for (const QByteArray& line : lines) {
        EXPECT_LE(line.toInt(), 100'000);
        EXPECT_GE(line.toInt(), 70'000);
    }
}

class MovencoderShapes : public testing::Test
{
protected:
    [[nodiscard]] QString path(const char* name) const { return folder_.path(QLatin1String(name)); }
    TempFolder folder_;
};

TEST_F(MovencoderShapes, FourByThreeGetsBordersAndSquarePixels)
{
    const QString source = path("camera.mov");
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=640x480:r=30"), QStringLiteral("-t"), QStringLiteral("0.3"),
                           QStringLiteral("-c:v"), QStringLiteral("mjpeg"), QStringLiteral("-q:v"), QStringLiteral("3"),
                           QStringLiteral("-pix_fmt"), QStringLiteral("yuvj420p"), source}));
    for (const char* format : {"aic", "prores"}) {
        SCOPED_TRACE(format);
        const QString output = path(format) + QStringLiteral(".mov");
        ASSERT_EQ(movencode(settingsPath(boxed), QLatin1String(format), source, output).status, 0);
        EXPECT_EQ(decodeErrors(output).toStdString(), "");
        const auto made = probe(output);
        EXPECT_EQ(made.value(QStringLiteral("width")), QStringLiteral("1280"));
        EXPECT_EQ(made.value(QStringLiteral("height")), QStringLiteral("720"));
        EXPECT_EQ(made.value(QStringLiteral("sample_aspect_ratio")), QStringLiteral("1:1"));
        EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), QStringLiteral("9"));
        // The JPEG's full range must come out as the limited one, here as the same picture after the same conversion.
        EXPECT_GE(psnr(output, source,
                       QStringLiteral("[0:v]crop=960:720:160:0,format=yuv420p[a];[1:v]scale=960:720:flags=bicubic:"
                                      "out_range=tv,format=yuv420p[b];[a][b]psnr")),
                  42.0);
        for (const char* x : {"0", "1120"}) {
            EXPECT_GE(psnr(output, source,
                           QStringLiteral("color=black:s=160x720,format=yuv420p,trim=end_frame=9[c];[1:v]nullsink;"
                                          "[0:v]crop=160:720:") +
                               QLatin1String(x) + QStringLiteral(":0,format=yuv420p[a];[a][c]psnr=shortest=1")),
                      48.0)
                << x;
        }
    }
}

TEST_F(MovencoderShapes, FourByThreeStretchedKeepsItsDisplayAspect)
{
    const QString source = path("camera.mov");
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=640x480:r=30"), QStringLiteral("-t"), QStringLiteral("0.1"),
                           QStringLiteral("-c:v"), QStringLiteral("libx264"), source}));
    ASSERT_EQ(movencode(settingsPath(plain), QStringLiteral("aic"), source, path("out.mov")).status, 0);
    const auto made = probe(path("out.mov"));
    EXPECT_EQ(made.value(QStringLiteral("width")), QStringLiteral("1280"));
    EXPECT_EQ(made.value(QStringLiteral("sample_aspect_ratio")), QStringLiteral("3:4"));
    EXPECT_EQ(made.value(QStringLiteral("color_space")), QStringLiteral("smpte170m"))
        << "enlarged without a tag it would be taken for high definition";
}

TEST_F(MovencoderShapes, AnamorphicWideScreenFillsThePicture)
{
    const QString source = path("camera.mov");
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=1440x1080:r=25,setsar=4/3"), QStringLiteral("-t"),
                           QStringLiteral("0.12"), QStringLiteral("-c:v"), QStringLiteral("libx264"), source}));
    ASSERT_EQ(movencode(settingsPath(boxed), QStringLiteral("aic"), source, path("out.mov")).status, 0);
    const auto made = probe(path("out.mov"));
    EXPECT_EQ(made.value(QStringLiteral("sample_aspect_ratio")), QStringLiteral("1:1"));
    EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), QStringLiteral("3"));
    EXPECT_GE(
        psnr(path("out.mov"), source, QStringLiteral("[1:v]scale=1280:720:flags=bicubic,setsar=1[b];[0:v][b]psnr")),
        40.0);
}

TEST_F(MovencoderShapes, RgbPicturesAreTaggedAsWhatTheyBecome)
{
    const QString source = path("screen.mov");
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=1280x720:r=25"), QStringLiteral("-t"), QStringLiteral("0.08"),
                           QStringLiteral("-c:v"), QStringLiteral("libx264rgb"), source}));
    ASSERT_EQ(probe(source).value(QStringLiteral("color_space")), QStringLiteral("gbr"));
    for (const char* format : {"aic", "prores"}) {
        SCOPED_TRACE(format);
        const QString output = path(format) + QStringLiteral(".mov");
        ASSERT_EQ(movencode(settingsPath(plain), QLatin1String(format), source, output).status, 0);
        EXPECT_EQ(probe(output).value(QStringLiteral("color_space")), QStringLiteral("smpte170m"));
    }
}

// What the camera tells of itself: user data, QuickTime's own keys, and its software, which the FFmpeg libraries would
// replace by their name.
TEST_F(MovencoderShapes, DateCameraPlaceAndTitleAreKept)
{
    const QStringList picture{
        QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),   QStringLiteral("testsrc2=s=64x64:r=25"),
        QStringLiteral("-t"), QStringLiteral("0.2"),   QStringLiteral("-c:v"), QStringLiteral("libx264")};
    const QMap<QString, QString> facts{
        {QStringLiteral("title"), QStringLiteral("Garden")},
        {QStringLiteral("comment"), QStringLiteral("first day")},
        {QStringLiteral("make"), QStringLiteral("Canon")},
        {QStringLiteral("model"), QStringLiteral("EOS")},
        {QStringLiteral("location"), QStringLiteral("+48.8584+002.2945/")},
        {QStringLiteral("creation_time"), QStringLiteral("2012-09-10T10:11:12.000000Z")}};
    QStringList metadata;
    for (auto fact = facts.cbegin(); fact != facts.cend(); ++fact) {
        metadata << QStringLiteral("-metadata") << fact.key() + QLatin1Char('=') + fact.value();
    }
    const QString settings = folder_.makeFile(
        QStringLiteral("settings"),
        QByteArrayLiteral("<plist version=\"1.0\"><dict><key>default</key><integer>4</integer><key>4</key><dict/>"
                          "</dict></plist>"));
    const QString userData = path("userdata.mov");
    ASSERT_TRUE(makeMedia(picture + metadata + QStringList{userData}));
    // As a camera with a firmware of that name would say it.
    QByteArray bytes = *readBytes(userData);
    ASSERT_TRUE(writeBytes(userData, bytes.replace("Lavf", "Firm")));
    const QString keys = path("keys.mov");
    ASSERT_TRUE(makeMedia(picture + metadata +
                          QStringList{QStringLiteral("-metadata"), QStringLiteral("com.apple.quicktime.software=12.4"),
                                      QStringLiteral("-movflags"), QStringLiteral("use_metadata_tags"), keys}));
    for (const QString& source : {userData, keys}) {
        SCOPED_TRACE(source.toStdString());
        const QString output = source + QStringLiteral(".out.mov");
        ASSERT_EQ(movencode(settings, QString(), source, output).status, 0);
        const auto made = probe(output);
        for (auto fact = facts.cbegin(); fact != facts.cend(); ++fact) {
            EXPECT_EQ(made.value(QStringLiteral("format.TAG:") + fact.key()), fact.value());
        }
    }
    const QString software = QStringLiteral("format.TAG:com.apple.quicktime.software");
    EXPECT_TRUE(probe(userData + QStringLiteral(".out.mov")).value(software).startsWith(QStringLiteral("Firm")));
    EXPECT_EQ(probe(keys + QStringLiteral(".out.mov")).value(software), QStringLiteral("12.4"));
}

TEST_F(MovencoderShapes, HighQualityProResSaysSo)
{
    const QString source = path("a.mov");
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("testsrc2=s=64x64:r=25"), QStringLiteral("-t"), QStringLiteral("0.08"),
                           QStringLiteral("-c:v"), QStringLiteral("libx264"), source}));
    const QString settings = folder_.makeFile(
        QStringLiteral("settings"),
        QByteArrayLiteral("<plist version=\"1.0\"><dict><key>default</key><integer>5</integer><key>5</key><dict>"
                          "<key>profile</key><string>hq</string></dict></dict></plist>"));
    ASSERT_EQ(movencode(settings, QString(), source, path("out.mov")).status, 0);
    const auto made = probe(path("out.mov"));
    EXPECT_EQ(made.value(QStringLiteral("codec_tag_string")), QStringLiteral("apch"));
    EXPECT_EQ(made.value(QStringLiteral("TAG:encoder")), QStringLiteral("Apple ProRes 422 HQ"));
}

TEST_F(MovencoderShapes, InterlacedPicturesKeepTheirFieldsAtTheirSize)
{
    const QString source = path("camera.mts");
    ASSERT_TRUE(
        makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                   QStringLiteral("testsrc2=s=720x576:r=50"), QStringLiteral("-t"), QStringLiteral("0.2"),
                   QStringLiteral("-vf"), QStringLiteral("interlace=scan=tff,setsar=16/15"), QStringLiteral("-c:v"),
                   QStringLiteral("libx264"), QStringLiteral("-flags"), QStringLiteral("+ildct+ilme"),
                   QStringLiteral("-x264opts"), QStringLiteral("tff=1"), source}));
    const QString settings = folder_.makeFile(
        QStringLiteral("settings"),
        QByteArrayLiteral("<plist version=\"1.0\"><dict><key>default</key><integer>4</integer><key>4</key><dict/>"
                          "<key>5</key><dict/></dict></plist>"));
    for (const char* format : {"aic", "prores"}) {
        SCOPED_TRACE(format);
        const QString output = path(format) + QStringLiteral(".mov");
        ASSERT_EQ(movencode(settings, QLatin1String(format), source, output).status, 0);
        EXPECT_EQ(decodeErrors(output).toStdString(), "");
        const auto made = probe(output);
        EXPECT_EQ(made.value(QStringLiteral("field_order")), QStringLiteral("tt"));
        EXPECT_EQ(made.value(QStringLiteral("sample_aspect_ratio")), QStringLiteral("16:15"));
        EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), QStringLiteral("5"));
        EXPECT_EQ(made.value(QStringLiteral("start_time")), QStringLiteral("0.000000"));
        const QByteArray bytes = *readBytes(output);
        const qsizetype frame = bytes.indexOf("icpf");
        if (frame >= 0) {
            constexpr qsizetype flags = 4 + 12;
            EXPECT_EQ(bytes.at(frame + flags) & 0x0C, 0x04)
                << "the pictures themselves say that the top field is first";
        }
        EXPECT_GE(
            psnr(output, source, QStringLiteral("[0:v]scale=interl=1:flags=bicubic,format=yuv420p[a];[a][1:v]psnr")),
            42.0);
    }
    // With another height only one field can be used: the picture is as still as that field.
    ASSERT_EQ(movencode(settingsPath(boxed), QStringLiteral("aic"), source, path("boxed.mov")).status, 0);
    EXPECT_EQ(probe(path("boxed.mov")).value(QStringLiteral("field_order")), QStringLiteral("progressive"));
    EXPECT_GE(psnr(path("boxed.mov"), source,
                   QStringLiteral("[0:v]crop=960:720:160:0[a];[1:v]field=top,scale=960:720:flags=bicubic,setsar=1[b];"
                                  "[a][b]psnr")),
              38.0);
}

} // namespace
