// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/encodefailure.h"

#include "base/dialogue/localisation.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "controllertest.h"
#include "testresources.h"

#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ReasonRow {
    const char* name;
    const char* transcript;
    const char* line;
};

class Reason : public testing::TestWithParam<ReasonRow>
{
};

const ReasonRow reasonRows[] = {
    {"Nothing", nullptr, nullptr},
    {"Empty", "", nullptr},
    {"ProgressOnly", "frame=  25 fps=0 size= 100kB time=1.00 bitrate= 1.0kbits/s\r", nullptr},
    {"OnlyDescriptions",
     "FFmpeg version git-N-1-g, Copyright\n  built on x\n  configuration: --x\n  libavutil 50. 1. 0\n"
     "Input #0, mpegts, from 'a':\n  Duration: 00:00:01.00\n    Stream #0.0: Video: h264\nOutput #0, mov, to 'b':\n"
     "    Stream #0.0: Video: h264\nStream mapping:\n  Stream #0.0 -> #0.0\nPress [q] to stop encoding\n"
     "video:1kB audio:1kB\n",
     nullptr},
    {"LastMessage", "a.mts: first\nframe= 1 time=1.0\nav_interleaved_write_frame(): No space left on device\n",
     "av_interleaved_write_frame(): No space left on device"},
    {"MessageBeforeProgress", "Error while decoding stream #0.0\nframe= 1 time=1.0 \rframe= 2 time=2.0 \r",
     "Error while decoding stream #0.0"},
    {"IndentedIsADescription", "Unknown encoder 'x'\n    title           : Could not write\n", "Unknown encoder 'x'"},
    {"SecondPassProgress", "cannot open settings\nProcessing (10%)\n", "cannot open settings"},
    {"TrailingBlank", "No such file  \n", "No such file"},
    {"BlankLines", "message\n\n   \n", "message"},
};

} // namespace

TEST_P(Reason, IsTheLastTellingLine)
{
    EXPECT_TEXT(failureLine(text(GetParam().transcript)), text(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(EncodeFailure, Reason, testing::ValuesIn(reasonRows), rowName<ReasonRow>);

namespace
{

class PlainReason : public ControllerTest
{
};

TEST_F(PlainReason, StandsBeforeTheToolsOwnWords)
{
    EXPECT_TEXT(plainReason(QStringLiteral("/d/out.mov: No space left on device")),
                QStringLiteral("the disk is full: make room or choose another destination "
                               "(/d/out.mov: No space left on device)"));
    EXPECT_TRUE(plainReason(QStringLiteral("ffmpeg: no installed ffmpeg was found in PATH"))
                    .startsWith(QStringLiteral("ffmpeg is not installed: ")));
    EXPECT_TRUE(plainReason(QStringLiteral("/d/a?.mov: Invalid argument"))
                    .startsWith(QStringLiteral("the disk does not take this name: ")));
    const QString unknown = QStringLiteral("Error while opening encoder: Invalid argument");
    EXPECT_TEXT(plainReason(unknown), unknown);
}

TEST_F(PlainReason, IsInTheUsersLanguage)
{
    setLanguage(QStringLiteral("fr"));
    EXPECT_TRUE(plainReason(QStringLiteral("x: Read-only file system")).startsWith(QStringLiteral("ce disque est en")));
}

TEST_F(PlainReason, OfTheMachineIsFoundAmongOtherLines)
{
    EXPECT_TRUE(machineTrouble(QStringLiteral("FFmpeg version x\nffmpeg: error while loading shared libraries: "
                                              "libavcodec.so.59: cannot open\n"))
                    .startsWith(QStringLiteral("ffmpeg lacks one of its libraries")));
    EXPECT_TRUE(machineTrouble(QStringLiteral("a.mts: Permission denied\n")).isNull()) << "that is the clip's";
    EXPECT_TRUE(machineTrouble(QString()).isNull());
}

// Every clip once had "no video that can be read".
TEST_F(PlainReason, OfAMissingFfmpegIsToldOfEachClip)
{
    QStringList reasons;
    QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                     [&reasons](const QString&, const QString& reason) { reasons << reason; });
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].letter = QString();
    tools.clips[source].text =
        QStringLiteral("ffmpeg: no installed ffmpeg was found in PATH, /usr/bin or /usr/local/bin\n");
    controller->draggedFiles({source});
    ASSERT_TRUE(tools.finish(ToolKind::Decode, 127));
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_TRUE(reasons.first().startsWith(QStringLiteral("ffmpeg is not installed: install the package ffmpeg (")));
    expectIdle();
}

TEST_F(PlainReason, OfAToolThatCannotBeStartedNamesIt)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 127));
    EXPECT_TRUE(rows().row(0).reason.endsWith(
        QStringLiteral("/tools/ffmpeg: this tool cannot be started; reinstall the program")))
        << rows().row(0).reason.toStdString();
}

TEST_F(PlainReason, OfACrashHasTheLastWordsBehind)
{
    const QString crash = QStringLiteral("ffmpeg: ended by signal 11 (Segmentation fault)\n");
    EXPECT_TEXT(
        tailReason(QStringLiteral("odd table\nframe= 1 time=1.0 \r") + crash),
        QStringLiteral("ffmpeg ended unexpectedly: try again; if it happens with every clip, install the package "
                       "ffmpeg anew (ffmpeg: ended by signal 11 (Segmentation fault); odd table)"));
    EXPECT_TRUE(tailReason(QStringLiteral("x: No space left on device\n") + crash)
                    .startsWith(QStringLiteral("the disk is full: ")));
    EXPECT_TRUE(tailReason(QStringLiteral("ffmpeg: ended by signal 9 (Killed)\n"))
                    .startsWith(QStringLiteral("the tool was killed, perhaps for lack of memory: ")));
    EXPECT_TEXT(tailReason(QStringLiteral("/d/ffmpeg: ended early.mts: odd\n")),
                QStringLiteral("/d/ffmpeg: ended early.mts: odd"));
    EXPECT_TRUE(tailReason(QString()).isNull());
}

// "no video that can be read" blamed the clip.
TEST_F(PlainReason, OfACrashInTheAnalysisIsNotTheClips)
{
    QStringList reasons;
    QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                     [&reasons](const QString&, const QString& reason) { reasons << reason; });
    const QString source = clip(QStringLiteral("a.mts"));
    for (const char* text : {"FFmpeg version x\nffmpeg: ended by signal 11 (Segmentation fault)\n",
                             "ffmpeg: ended with status 1 and said nothing\n"}) {
        tools.clips[source].text = QString::fromUtf8(text);
        controller->draggedFiles({source});
        ASSERT_TRUE(tools.finish(ToolKind::Decode, 1));
        ASSERT_FALSE(reasons.isEmpty());
        EXPECT_TRUE(reasons.last().startsWith(QStringLiteral("ffmpeg ended unexpectedly: "))) << text;
    }
    tools.clips[source].text = QString();
    controller->draggedFiles({source});
    const FakeTools::Launch launch = tools.current(ToolKind::Decode);
    launch.launcher->endBySignal(9);
    EXPECT_TRUE(reasons.last().endsWith(QStringLiteral("(ffmpeg: ended by signal 9 (Killed))")))
        << reasons.last().toStdString();
    EXPECT_EQ(reasons.size(), 3);
    expectIdle();
}

// It was said to have written no output.
TEST_F(PlainReason, OfACrashInTheSecondPassNamesItsSignal)
{
    setPRORES(1);
    addRows(makeClips(1));
    rows().setOut(0, 5);
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    const FakeTools::Launch launch = tools.current(ToolKind::SecondPass);
    ASSERT_TRUE(launch.launcher);
    launch.launcher->write(QStringLiteral("Processing (10%)\n"));
    launch.launcher->endBySignal(11);
    EXPECT_TEXT(
        rows().row(0).reason,
        QStringLiteral("the encoder ended unexpectedly: try again; if it happens with every clip, reinstall the "
                       "program (movencoder: ended by signal 11 (Segmentation fault))"));
}

// It was told as a lack of room.
TEST_F(PlainReason, OfAFolderThatHasGoneMeanwhile)
{
    addRows(makeClips(1));
    pressStart();
    ASSERT_TRUE(QDir(events).removeRecursively());
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_TEXT(rows().row(0).reason,
                events + QStringLiteral(": this folder has gone meanwhile: connect its disk again "
                                        "or choose another destination"));
}

TEST_F(PlainReason, OfTheSecondPassNeedsItsTrueRoom)
{
    setPRORES(1);
    addRows(makeClips(1));
    rows().setOut(0, 5);
    // The rule asks for 3 megabytes; half a minute of this picture takes more than a hundred.
    setFreeSpaceForTests(20);
    runBatch();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_TRUE(rows().row(0).reason.startsWith(QStringLiteral("not enough free space in the destination: at least ")))
        << rows().row(0).reason.toStdString();
    EXPECT_TRUE(rows().row(0).reason.endsWith(QStringLiteral("21 MB are free")));
}

TEST_F(PlainReason, OfMissingPresetsIsNoOtherEncode)
{
    const TestResources resources;
    makeController();
    addRows(makeClips(1));
    rows().setOut(0, 1);
    runBatch();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_TRUE(rows().row(0).reason.endsWith(
        QStringLiteral("/tools/presets: the settings of this format are missing; reinstall the program")))
        << rows().row(0).reason.toStdString();
}

TEST_F(PlainReason, OfAnEndedBatchIsItsTally)
{
    const QStringList sources = makeClips(4);
    addRows(sources);
    tools.clips[sources.at(0)].verdict = judge::Verdict{judge::Outcome::Incomplete, {{.cause = judge::Cause::CutOff}}};
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(sources.at(1)), 300));
    controller->setReplacePolicy(0);
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_TEXT(rows().row(2).resultat, rowIcon::current);
    pressStop();
    EXPECT_TEXT(face.alerts.last().text,
                QStringLiteral("0 of 4 clips converted, 1 incomplete, 1 failed, 1 kept, 1 not begun"));
}

} // namespace
