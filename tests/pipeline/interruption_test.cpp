// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"
#include "testpaths.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFileInfo>

#include <signal.h>

using namespace tavrix::test;

namespace
{

bool isEvent(const QJsonObject& object, const char* name)
{
    return object.value(text("event")).toString() == text(name);
}

class Interruption : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        clips = new TempFolder;
        ClipRequest request = avchdLiteClip();
        request.seconds = 8;
        ASSERT_TRUE(makeClip(clips->path(text("00001.MTS")), request));
        ASSERT_TRUE(makeClip(clips->path(text("00002.MTS")), request));
    }
    static void TearDownTestSuite()
    {
        delete clips;
        clips = nullptr;
    }

    void start(int format)
    {
        program.start({text("--format"), QString::number(format), text("--output"), destination.path(), clips->path()});
    }
    bool readUntilProgress()
    {
        return program.readUntil([](const QJsonObject& object) { return isEvent(object, "progress"); });
    }
    void expectNothingLeft()
    {
        EXPECT_TRUE(program.allProcessesGone());
        for (const QString& file : filesBelow(destination.path())) {
            // Only complete outputs may be there: of rows that had ended before.
            EXPECT_FALSE(probed(destination.path(file)).isEmpty()) << file.toStdString();
            EXPECT_FALSE(QFileInfo(file).fileName().startsWith(QLatin1Char('.'))) << file.toStdString();
            EXPECT_FALSE(file.contains(text("_MASTER"))) << file.toStdString();
        }
    }

    static TempFolder* clips;
    TempFolder destination;
    BatchProgram program;
};

TempFolder* Interruption::clips = nullptr;

TEST_F(Interruption, ctrlCStopsTheBatchAndRemovesThePartialOutput)
{
    for (const int format : {0, 4}) {
        start(format);
        ASSERT_TRUE(readUntilProgress());
        ASSERT_EQ(::kill(static_cast<pid_t>(program.pid()), SIGINT), 0);
        const BatchResult result = program.finish();
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(result.outputs().isEmpty());
        EXPECT_TRUE(program.allProcessesGone());
        EXPECT_TRUE(filesBelow(destination.path()).isEmpty());
    }
}

TEST_F(Interruption, terminationEndsChildrenAndTemporaryFiles)
{
    start(0);
    ASSERT_TRUE(readUntilProgress());
    ASSERT_EQ(::kill(static_cast<pid_t>(program.pid()), SIGTERM), 0);
    EXPECT_EQ(program.finish().exitCode, 1);
    EXPECT_TRUE(program.allProcessesGone());
    EXPECT_TRUE(filesBelow(destination.path()).isEmpty());
    EXPECT_TRUE(filesBelow(program.home() + text("/tmp/Tavrix")).isEmpty());
}

TEST_F(Interruption, aSuspendedProgramHasItsEncoderStoppedAndGoesOnAfterwards)
{
    start(0);
    ASSERT_TRUE(readUntilProgress());
    ASSERT_EQ(::kill(static_cast<pid_t>(program.pid()), SIGTSTP), 0);
    QDeadlineTimer deadline(10000);
    const auto allStopped = [this] {
        for (const int pid : program.processes()) {
            if (processState(pid) != text("T")) {
                return false;
            }
        }
        return true;
    };
    while (!allStopped() && !deadline.hasExpired()) {
    }
    EXPECT_TRUE(allStopped()) << "a stopped process cannot use the processor";
    EXPECT_GE(program.processes().size(), 3) << "program, front and encoder";
    ASSERT_EQ(::kill(static_cast<pid_t>(program.pid()), SIGCONT), 0);
    const BatchResult result = program.finish();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.outputs().size(), 2);
}

struct KillCase {
    const char* victim;
    int format;
    int eventsBefore;
};

TEST_F(Interruption, killingAnyOfTheProcessesAtAnyMomentLeavesNothingHalfDone)
{
    const KillCase cases[] = {{"tavrix-batch", 0, 2}, {"tavrix-batch", 0, 7},    {"tavrix-batch", 4, 8},
                              {"tools/ffmpeg", 0, 6}, {"tools/ffmpeg", 3, 2},    {"bin/ffmpeg", 0, 7},
                              {"bin/ffmpeg", 2, 2},   {"tools/movencoder", 4, 7}};
    for (const KillCase& killCase : cases) {
        SCOPED_TRACE(std::string(killCase.victim) + " in format " + std::to_string(killCase.format));
        TempFolder fresh;
        program.start({text("--format"), QString::number(killCase.format), text("--existing"), text("replace"),
                       text("--output"), fresh.path(), clips->path()});
        int seen = 0;
        program.readUntil([&](const QJsonObject&) {
            return ++seen >= killCase.eventsBefore && !program.processesRunning(text(killCase.victim)).isEmpty();
        });
        for (const int pid : program.processesRunning(text(killCase.victim))) {
            ::kill(pid, SIGKILL);
        }
        program.finish();
        EXPECT_TRUE(program.allProcessesGone());
        for (const QString& file : filesBelow(fresh.path())) {
            EXPECT_FALSE(QFileInfo(file).fileName().startsWith(QLatin1Char('.'))) << file.toStdString();
            EXPECT_NEAR(secondsOf(probed(fresh.path(file)).value(text("format")).toObject(), "duration"), 8.0, 0.2)
                << file.toStdString();
        }
    }
    start(3);
    EXPECT_EQ(program.finish().exitCode, 0) << "the next run works";
    expectNothingLeft();
}

TEST_F(Interruption, killingTheProgramInTheSecondPassLeavesNoFirstPass)
{
    start(5);
    QDeadlineTimer deadline(60000);
    const auto secondPassRuns = [&] {
        return !program.processesRunning(text("tools/movencoder")).isEmpty() &&
               filesBelow(destination.path()).isEmpty();
    };
    while (!secondPassRuns() && !deadline.hasExpired()) {
    }
    ASSERT_FALSE(deadline.hasExpired());
    ASSERT_EQ(::kill(static_cast<pid_t>(program.pid()), SIGKILL), 0);
    program.finish();
    EXPECT_TRUE(program.allProcessesGone());
    EXPECT_EQ(filesBelow(destination.path()), QStringList());
}

TEST_F(Interruption, aSecondCopyIsRefusedAndLeavesTheFirstAlone)
{
    start(0);
    ASSERT_TRUE(readUntilProgress());
    QByteArray output;
    EXPECT_FALSE(runTool(text("/usr/bin/env"),
                         {text("HOME=") + program.home(), text("TMPDIR=") + program.home() + text("/tmp"),
                          text(TAVRIX_BUILD_BIN "/tavrix-batch"), clips->path()},
                         &output));
    EXPECT_FALSE(output.isEmpty()) << "the refusal is told";
    const qsizetype seen = program.processes().size();
    EXPECT_GE(seen, 3) << "program, front and encoder of the first copy go on";
    ::kill(static_cast<pid_t>(program.pid()), SIGTERM);
    program.finish();
    expectNothingLeft();
}

} // namespace
