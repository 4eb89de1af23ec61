// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffprobes.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/store/settings.h"
#include "probe/fakeresources.h"
#include "probe/ffinfos.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"

namespace tavrix
{

namespace
{

using test::FakeResources;
using test::LogCapture;
using test::TempFolder;

const QString ffmpegTool = QStringLiteral("ffmpeg");

struct RevisionRow {
    const char* name;
    const char* banner;
    int revision;
};

struct SuccessRow {
    const char* name;
    const char* text;
    bool success;
};

struct FormatRow {
    const char* name;
    const char* fileAnswer;
    const char* text;
    const char* format;
};

} // namespace

class Revisions : public testing::TestWithParam<RevisionRow>
{
};

TEST_P(Revisions, AreReadFromTheBanner)
{
    EXPECT_EQ(ffRevisionFromBanner(test::text(GetParam().banner)), GetParam().revision);
}

INSTANTIATE_TEST_SUITE_P(Banners, Revisions,
                         testing::Values(RevisionRow{"Git", "FFmpeg version git-N-23048-gabc, Copyright", 23048},
                                         RevisionRow{"WithoutHash", "git-N-25801", 25801},
                                         RevisionRow{"FirstOfTwo", "git-N-1-g git-N-2-g", 1},
                                         RevisionRow{"Released", "ffmpeg version 5.1.9-0+deb12u1", 0},
                                         RevisionRow{"Shell", "sh: 1: : Permission denied", 0},
                                         RevisionRow{"Empty", "", 0}, RevisionRow{"Nothing", nullptr, 0}),
                         test::rowName<RevisionRow>);

class Successes : public testing::TestWithParam<SuccessRow>
{
};

TEST_P(Successes, AreToldFromTheText)
{
    const LogCapture log;
    EXPECT_EQ(ffmpegSuccess(test::text(GetParam().text)), GetParam().success);
    EXPECT_TRUE(log.contains(GetParam().success ? QStringLiteral("ffmpegSuccess       :-)")
                                                : QStringLiteral("ffmpegSuccess       :-(")));
}

INSTANTIATE_TEST_SUITE_P(Texts, Successes,
                         testing::Values(SuccessRow{"Banner", "Input #0, mpeg, from 'x'", true},
                                         SuccessRow{"Blank", " ", true}, SuccessRow{"Empty", "", false},
                                         SuccessRow{"Nothing", nullptr, false},
                                         SuccessRow{"Format", "x.mov: UNKNOWN format", false},
                                         SuccessRow{"FormatWithoutColon", "unknown format", true},
                                         SuccessRow{"InputOutput", "x: I/O error occured", false},
                                         SuccessRow{"SpelledRight", "x: I/O error occurred", true},
                                         SuccessRow{"Parameters", "x: Could not find codec parameters", false},
                                         SuccessRow{"Codec", "Unsupported video codec", false},
                                         SuccessRow{"Opening", "Error while opening file", false}),
                         test::rowName<SuccessRow>);

class Formats : public testing::TestWithParam<FormatRow>
{
};

TEST_P(Formats, AreForcedByTheAnswer)
{
    const FormatRow& row = GetParam();
    EXPECT_TEXT(forceFormatFromAnswer(test::text(row.fileAnswer), test::text(row.text)), test::text(row.format));
}

INSTANTIATE_TEST_SUITE_P(Answers, Formats,
                         testing::Values(FormatRow{"Dv", "DIF (DV) movie file (PAL)", "Data: m2s", "dv"},
                                         FormatRow{"Mpeg", "MPEG sequence, v2, program multiplex", "", "mpeg"},
                                         FormatRow{"DvBeforeMpeg", "MPEG DIF (DV", "", "dv"},
                                         FormatRow{"Empty", "", "Data: m2s", nullptr},
                                         FormatRow{"Nothing", nullptr, "Data: m2s", nullptr},
                                         FormatRow{"System1", "data", "Stream #0.0: Data: m1s", "mpeg"},
                                         FormatRow{"System2", "data", "Data: m2s", "mpeg"},
                                         FormatRow{"Video1", "data", "Data: m1v", "mpegvideo"},
                                         FormatRow{"Video2", "data", "Data: m2v", "mpegvideo"},
                                         FormatRow{"ShorterTagFirst", "data", "Data: m1v1", "mpegvideo"},
                                         FormatRow{"OrderOfTheList", "data", "Data: m2s Data: m1v", "mpegvideo"},
                                         FormatRow{"NoTag", "data", "Data: none", nullptr}),
                         test::rowName<FormatRow>);

TEST(ForceFormat, NothingWithoutAText)
{
    EXPECT_TRUE(forceFormat(QStringLiteral("/etc/hostname"), QString()).isNull());
    EXPECT_TRUE(forceFormatLite(QString()).isNull());
}

TEST(ForceFormat, AsksTheFileTypeTool)
{
    TempFolder folder;
    setTMPFOLDER(folder.path() + u'/');
    // Program stream pack header, and a transport stream, which the file-type tool does not know.
    const QString program =
        folder.makeFile(QStringLiteral("a.vob"),
                        QByteArray::fromHex("000001ba44000400040100ccddf8000001bb000c80cc") + QByteArray(64, 0));
    const QString data = folder.makeFile(QStringLiteral("a.mts"), QByteArray::fromHex("0000000047401110"));
    EXPECT_TEXT(forceFormat(program, QStringLiteral("")), QStringLiteral("mpeg"));
    EXPECT_TRUE(forceFormat(data, QStringLiteral("")).isNull());
    EXPECT_TEXT(forceFormat(data, QStringLiteral("Data: m2v")), QStringLiteral("mpegvideo"));
    setTMPFOLDER(QString());
}

TEST(CommandTexts, OrdinaryPathsStayAsTheyAre)
{
    const QString tool = QStringLiteral("/R/tools/ffmpeg");
    const QString path = QStringLiteral("/M/a b é.mts");
    EXPECT_TEXT(
        durationM2vCommand(tool, path),
        QString::fromUtf8("\"/R/tools/ffmpeg\" -i \"/M/a b é.mts\" -vcodec copy -an -f null -y /dev/null 2>&1 | "
                          "grep time= | strings | tail -1 | /usr/bin/awk -F \"time=\" '{print $2}' | "
                          "/usr/bin/awk '{print $1}'"));
    EXPECT_TEXT(mpegTsCommand(tool, path),
                QString::fromUtf8("\"/R/tools/ffmpeg\" -i \"/M/a b é.mts\" 2>&1  | /usr/bin/tail -100 | "
                                  "/usr/bin/strings | /usr/bin/grep 'Input #0' | /usr/bin/awk -F 'from' '{print $1}' | "
                                  "/usr/bin/grep mpegts"));
    EXPECT_TEXT(
        ffmpegVsyncCommand(tool, path, QString()),
        QString::fromUtf8("\"/R/tools/ffmpeg\" -v 3 -vframes 35 -i \"/M/a b é.mts\" -s 320x240 -pix_fmt yuv420p "
                          "-an -f null -y /dev/null 2>&1"));
    EXPECT_TEXT(audioCodecCommand(tool, QStringLiteral("/M/a.mts"), QStringLiteral("/C/f.txt"), QString()),
                QStringLiteral("\"/R/tools/ffmpeg\" -t 5 -i /M/a.mts -vn -f wav -y /dev/null &> /C/f.txt"));
    EXPECT_TEXT(audioCodecCommand(tool, QStringLiteral("/M/a.mts"), QStringLiteral("/C/f.txt"), QStringLiteral("dv")),
                QStringLiteral("\"/R/tools/ffmpeg\" -t 5  -f dv -i /M/a.mts -vn -f wav -y /dev/null &> /C/f.txt"));
}

TEST(CommandTexts, ForcedFormatFollowsTheToolName)
{
    EXPECT_TEXT(
        ffmpegVsyncCommand(QStringLiteral("/R/tools/ffmpeg"), QStringLiteral("/M/a.dv"), QStringLiteral("dv")),
        QStringLiteral("\"/R/tools/\"ffmpeg -f dv -v 3 -vframes 35 -i \"/M/a.dv\" -s 320x240 -pix_fmt yuv420p -an "
                       "-f null -y /dev/null 2>&1"));
    EXPECT_TEXT(
        ffmpegVsyncCommand(QStringLiteral("/R/ffmpeg"), QStringLiteral("/M/ffmpeg"), QStringLiteral("dv")),
        QStringLiteral("\"/R/\"ffmpeg -f dv -v 3 -vframes 35 -i \"/M/\"ffmpeg -f dv -s 320x240 -pix_fmt yuv420p "
                       "-an -f null -y /dev/null 2>&1"));
}

TEST(CommandTexts, HostileNamesAreData)
{
    const QString tool = QStringLiteral("/R/ffmpeg");
    const QString path = QStringLiteral("/M/$(touch x)`y`\"z\\");
    const QString quoted = QStringLiteral("\"/M/\\$(touch x)\\`y\\`\\\"z\\\\\"");
    EXPECT_TRUE(durationM2vCommand(tool, path).contains(quoted));
    EXPECT_TRUE(mpegTsCommand(tool, path).contains(quoted));
    EXPECT_TRUE(ffmpegVsyncCommand(tool, path, QString()).contains(quoted));
    EXPECT_TRUE(audioCodecCommand(tool, path, QStringLiteral("/C/f"), QString())
                    .contains(QStringLiteral("-i '/M/$(touch x)`y`\"z\\' -vn")));
}

TEST(Interlacing, CommandAndListsAreExact)
{
    const FakeResources resources;
    resources.makeTool(ffmpegTool, "exit 0\n");
    const QString tool = resources.root() + QStringLiteral("/tools/ffmpeg");
    setTMPFOLDER(QStringLiteral("/T/"));
    EXPECT_TEXT(
        interlacedYuvheadersArgsStr(QStringLiteral("'/M/a b'")),
        u'"' + tool +
            QStringLiteral("\" -vframes 1 -i '/M/a b' -s 640x480 -pix_fmt yuv420p -f yuv4mpegpipe - 2>/dev/null | "
                           "/usr/bin/head -1 | /usr/bin/strings | /usr/bin/awk -F ' I' '{print $2}' | "
                           "/usr/bin/awk '{print $1}'"));
    EXPECT_EQ(interlacedYuvheadersArgs(QStringLiteral("/M/a b")).join(u'|'),
              tool +
                  QStringLiteral("|-vframes|1|-i|/M/a b|-s|640x480|-pix_fmt|yuv420p|-f|yuv4mpegpipe|-y|/T/frame.yuv"));
    EXPECT_EQ(ffYuvInputArray().join(u' '), QStringLiteral("| ") + tool + QStringLiteral(" -f yuv4mpegpipe -i -"));
    EXPECT_EQ(ffYuvOutputArray().join(u' '), QStringLiteral("-f yuv4mpegpipe -"));
    setTMPFOLDER(QString());
}

TEST(Interlacing, LetterNamesTheFieldOrder)
{
    const QString table = QStringLiteral("fields");
    EXPECT_TEXT(interlacedYuvheaders2tvxStr(QStringLiteral("t")), localizedString(QStringLiteral("TFF"), table));
    EXPECT_TEXT(interlacedYuvheaders2tvxStr(QStringLiteral("b")), localizedString(QStringLiteral("BFF"), table));
    for (const QString& other : {QStringLiteral("p"), QStringLiteral("m"), QStringLiteral("T"), QString()}) {
        EXPECT_TEXT(interlacedYuvheaders2tvxStr(other), localizedString(QStringLiteral("PFF"), table));
    }
}

TEST(Aspect, FollowsTheRevision)
{
    const QString aspect = QStringLiteral("16:9");
    EXPECT_EQ(ffAspectArgs(aspect, 23047).join(u' '), QStringLiteral("-aspect 16:9"));
    EXPECT_EQ(ffAspectArgs(aspect, 23048).join(u' '), QStringLiteral("-vf 'setdar=16:9'"));
    EXPECT_EQ(ffAspectArgs(aspect, 0).size(), 2);
}

TEST(Aspect, AsksTheToolAtEveryCall)
{
    const FakeResources resources;
    const LogCapture log;
    resources.makeTool(ffmpegTool, "echo 'FFmpeg version git-N-23048-gabc' >&2\nexit 1\n");
    EXPECT_EQ(ffAspect(QStringLiteral("4:3"), true), QStringList{QStringLiteral("-vf 'setdar=4:3'")});
    EXPECT_TRUE(log.contains(QStringLiteral("FFmpeg version      : 23048")));
    resources.makeTool(ffmpegTool, "echo 'FFmpeg version git-N-23047-gabc'\n");
    EXPECT_EQ(ffAspect(QStringLiteral("4:3"), false).join(u' '), QStringLiteral("-aspect 4:3"));
    EXPECT_TRUE(log.contains(QStringLiteral("FFmpeg version      : 23047")));
}

TEST(Aspect, NoToolGivesRevisionZero)
{
    const FakeResources resources;
    EXPECT_EQ(ffRevisionInt(), 0);
}

TEST(AudioCodec, ComplaintOfTheDecoderMakesItFail)
{
    const FakeResources resources;
    const QString source = resources.folder().makeFile(QStringLiteral("a b.mts"));
    resources.makeTool(ffmpegTool, "echo 'Spectral extension attenuation not implemented.' >&2\n");
    EXPECT_FALSE(ffmpegSuccessAudioCodec(source));
    EXPECT_EQ(resources.toolArguments(ffmpegTool).join(u' '),
              QStringLiteral("-t 5 -i ") + source + QStringLiteral(" -vn -f wav -y /dev/null"));
    EXPECT_FALSE(test::itemExists(cachesFolder() + QStringLiteral("/ffAudioCodec.txt")));
    resources.makeTool(ffmpegTool, "printf \"caf\\351 Pas d'autre string a parser pour le moment ;-)\"\n");
    EXPECT_FALSE(ffmpegSuccessAudioCodec(source));
    resources.makeTool(ffmpegTool, "echo 'Input #0, mpegts' >&2\nexit 1\n");
    EXPECT_TRUE(ffmpegSuccessAudioCodec(source));
}

TEST(Duration, IsTheLastTimeOfACopy)
{
    const FakeResources resources;
    const QString source = resources.folder().makeFile(QStringLiteral("it's $5.m2v"));
    resources.makeTool(ffmpegTool,
                       "printf 'frame= 1 time=1.28 x\\rframe= 2 time=12.96 bitrate=1\\nvideo:1kB\\n' >&2\n");
    EXPECT_EQ(durationM2v(source), 12);
    EXPECT_EQ(resources.toolArguments(ffmpegTool).value(1), source);
    resources.makeTool(ffmpegTool, "echo nothing\n");
    EXPECT_EQ(durationM2v(source), 0);
    EXPECT_EQ(durationM2v(resources.folder().path(QStringLiteral("missing"))), 0);
}

TEST(TransportStream, PathAnswersTrueAlsoWithoutAnyOutput)
{
    const FakeResources resources;
    resources.makeTool(ffmpegTool, "echo \"Input #0, mpegts, from 'x'\" >&2\n");
    EXPECT_TRUE(mpegTs(QStringLiteral("/M/x.mts"), QString()));
    resources.makeTool(ffmpegTool, "echo \"Input #0, avi, from 'x'\" >&2\n");
    EXPECT_TRUE(mpegTs(QStringLiteral("/M/x.avi"), QString()));
}

TEST(TransportStream, TextNamesIt)
{
    EXPECT_TRUE(mpegTs(QStringLiteral(""), QStringLiteral("x\nInput #0, mpegts, from 'a'")));
    EXPECT_TRUE(mpegTs(QString(), QStringLiteral("Input #0, mpegts, from 'a'")));
    EXPECT_FALSE(mpegTs(QStringLiteral(""), QStringLiteral("Input #0, avi, from 'mpegts'")));
    EXPECT_FALSE(mpegTs(QStringLiteral(""), QStringLiteral("Input #0, mpegts")));
    EXPECT_FALSE(mpegTs(QStringLiteral(""), QStringLiteral("")));
    EXPECT_FALSE(mpegTs(QStringLiteral(""), QString()));
}

TEST(Vsync, NeedsAllThreeWords)
{
    const QString path = QStringLiteral("/M/x");
    EXPECT_TRUE(ffmpegVsync(path, QStringLiteral("*** 3 dup!\ntimestamp discontinuity"), QString()));
    EXPECT_FALSE(ffmpegVsync(path, QStringLiteral("dup! timestamp discontinuity"), QString()));
    EXPECT_FALSE(ffmpegVsync(path, QStringLiteral("*** timestamp discontinuity"), QString()));
    EXPECT_FALSE(ffmpegVsync(path, QStringLiteral("*** dup!"), QString()));
    EXPECT_FALSE(ffmpegVsync(path, QString(), QString()));
}

TEST(Vsync, EmptyTextAsksTheTool)
{
    const FakeResources resources;
    const LogCapture log;
    resources.makeTool(ffmpegTool, "echo '*** 1 dup! timestamp discontinuity' >&2\n");
    EXPECT_TRUE(ffmpegVsync(QStringLiteral("/M/x y.dv"), QStringLiteral(""), QStringLiteral("dv")));
    EXPECT_TRUE(log.contains(QStringLiteral("hack ffmpeg")));
    EXPECT_EQ(resources.toolArguments(ffmpegTool).mid(0, 8).join(u'|'),
              QStringLiteral("-f|dv|-v|3|-vframes|35|-i|/M/x y.dv"));
}

TEST(FfInfosRun, AsksTheToolWhenTheBannerDescribesNoInput)
{
    const FakeResources resources;
    setTMPFOLDER(resources.folder().makeFolder(QStringLiteral("tmp dir")) + u'/');
    const QString source = QStringLiteral("/M/$(touch x) \"y\".mts");
    resources.makeTool(ffmpegTool,
                       "printf 'x\\nInput #0, mpegts, from 1\\nAt least one output file must be specified\\n' "
                       ">&2\nexit 1\n");
    const auto record = ffInfos(source, QStringLiteral(""));
    ASSERT_TRUE(record.has_value());
    EXPECT_TEXT(record->value(record::wrapper).toString(), QStringLiteral("mpegts"));
    EXPECT_EQ(resources.toolArguments(ffmpegTool).join(u'|'), QStringLiteral("-v|2|-i|") + source);
    resources.makeTool(ffmpegTool, "echo 'x: No such file or directory' >&2\nexit 1\n");
    const test::AlertRecorder alerts;
    setDEBUG(1);
    EXPECT_FALSE(ffInfos(source, QStringLiteral("junk")).has_value());
    setDEBUG(0);
    EXPECT_TEXTS(alerts.shown(), QStringList{QStringLiteral("ffInfos > !Input #: :-(((")});
    setTMPFOLDER(QString());
}

} // namespace tavrix
