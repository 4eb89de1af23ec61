// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/batchrunner.h"

#include "base/dialogue/alerts.h"
#include "base/text/paths.h"
#include "consoletest.h"
#include "encode/outputname.h"
#include "platform/desktop.h"
#include "probe/recordersources.h"
#include "support/waituntil.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// The face of the console on a controller whose tools are pretended; the test program keeps its own output.
class TestFace : public ConsoleFace
{
public:
    using ConsoleFace::ConsoleFace;
    bool redirectsOutput() override { return false; }
    void terminate() override { terminated = true; }
    bool terminated = false;
};

class BatchRunnerTest : public ConsoleTest
{
protected:
    BatchRunnerTest()
    {
        setAlertPresenter(&face);
        setDesktopServices(&face);
        controller.setLauncherFactory(tools.factory());
        controller.encGoRazGui();
        controller.model().prefCheckMatrix.setSelectedSegment(3);
        controller.model().mainEncDstPathStr.setStringValue(folder.makeFolder(text("destination")));
    }
    ~BatchRunnerTest() override
    {
        setAlertPresenter(nullptr);
        setDesktopServices(nullptr);
        settle();
    }

    QString clip(const char* name) { return folder.makeFile(text("clips/") + text(name), name); }
    void start(const QStringList& sources)
    {
        runner.start(sources);
        settle();
    }
    // Serves tools and event loop until the program would end.
    [[nodiscard]] bool runToTheEnd()
    {
        return waitUntil([this] {
            (void)tools.finishAll();
            return face.terminated;
        });
    }
    [[nodiscard]] bool runUntil(ToolKind kind)
    {
        return waitUntil([this, kind] {
            if (tools.current(kind).launcher) {
                return true;
            }
            const QList<FakeTools::Launch> running = tools.running();
            if (!running.isEmpty()) {
                tools.finish(running.last());
            }
            return false;
        });
    }
    [[nodiscard]] QStringList notesOf(const char* word) const
    {
        return reporter.notes.filter(QRegularExpression(text("^") + text(word)));
    }

    NotingReporter reporter;
    TestFace face{&reporter, false};
    FakeTools tools;
    appDelegate controller{&face};
    BatchRunner runner{&controller, &face, &reporter, {}};
};

TEST_F(BatchRunnerTest, convertsEverythingAndQuits)
{
    start({clip("a.mts"), clip("b.mts")});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitAllDone);
    QStringList notes = reporter.notes;
    notes.removeIf([](const QString& note) { return note.startsWith(text("progress")); });
    EXPECT_TEXTS(notes.mid(0, 9),
                 QStringList({text("queued 2"), text("analysing 1/2 a.mts"), text("accepted a.mts"),
                              text("analysing 2/2 b.mts"), text("accepted b.mts"), text("started 1/2 a.mts"),
                              text("finished 1/2 done"), text("started 2/2 b.mts"), text("finished 2/2 done")}));
    EXPECT_TEXT(reporter.notes.last(), text("summary of 2, 0 left out, status 0"));
}

// A script looks for the outputs in the folder that the summary names.
TEST_F(BatchRunnerTest, theFolderOfADestinationTypedWithATildeIsTheOneWithTheOutputs)
{
    const QString typed = homeFolder() + text("/typed");
    ASSERT_TRUE(QDir().mkpath(typed));
    controller.model().mainEncDstPathStr.setStringValue(text("~/typed"));
    start({clip("a.mts")});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_TEXT(reporter.folder, typed + text("/Tavrix events"));
    EXPECT_EQ(QDir(reporter.folder).entryList(QDir::Files).size(), 1);
    QDir(typed).removeRecursively();
}

TEST_F(BatchRunnerTest, tellsARowThatFails)
{
    const QString failing = clip("b.mts");
    tools.clips[failing].kilobytes = -1;
    start({clip("a.mts"), failing});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_TEXTS(notesOf("finished"),
                 QStringList({text("finished 1/2 done"), text("finished 2/2 the encoder wrote no output")}));
}

TEST_F(BatchRunnerTest, countsWhatIsLeftOut)
{
    const QString film = clip("film.mts");
    tools.clips[film].height = 1080;
    tools.clips[film].width = 1920;
    start({clip("a.mts"), film});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitAllDone);
    EXPECT_TEXTS(notesOf("rejected"), QStringList({text("rejected film.mts: 1920x1080 is larger than 1280x720")}));
    EXPECT_TEXT(reporter.notes.last(), text("summary of 1, 1 left out, status 0"));
}

TEST_F(BatchRunnerTest, endsWhenNoneIsACameraClip)
{
    const QString film = clip("film.mts");
    tools.clips[film].width = 1920;
    start({film});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitNothingAccepted);
    EXPECT_EQ(notesOf("started").size(), 0);
    EXPECT_TEXT(reporter.notes.last(), text("summary of 0, 1 left out, status 3"));
}

TEST_F(BatchRunnerTest, endsWhenThereIsNoFileOfAKnownType)
{
    start({clip("letter.txt")});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitNothingAccepted);
    EXPECT_TEXTS(reporter.notes,
                 QStringList({text("rejected letter.txt: not a camera clip (.txt)"),
                              text("message Nothing to convert: no file of a known type among the sources||"),
                              text("summary of 0, 1 left out, status 3")}));
}

TEST_F(BatchRunnerTest, endsWhenTheAnalysisToolCannotStart)
{
    tools.results = {1};
    start({clip("a.mts")});
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_EQ(notesOf("message The analysis tool could not be started").size(), 1);
}

TEST_F(BatchRunnerTest, aSourceThatVanishesIsAFailedRow)
{
    const QString gone = clip("b.mts");
    start({clip("a.mts"), gone});
    ASSERT_TRUE(runUntil(ToolKind::Encode));
    ASSERT_TRUE(QFile::remove(gone));
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_TEXT(reporter.notes.last(), text("summary of 2, 0 left out, status 1"));
}

TEST_F(BatchRunnerTest, anInterruptionStopsTheBatch)
{
    start({clip("a.mts"), clip("b.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Encode));
    runner.interrupt();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_TEXTS(notesOf("started"), QStringList({text("started 1/2 a.mts")}));
    EXPECT_TEXTS(notesOf("finished"), QStringList({text("finished 1/2 stopped")}));
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    EXPECT_TEXT(reporter.notes.last(), text("summary of 1, 0 left out, status 1"));
}

TEST_F(BatchRunnerTest, anInterruptionOfTheAnalysisConvertsNothing)
{
    start({clip("a.mts"), clip("b.mts"), clip("c.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Thumbnail));
    runner.interrupt();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_EQ(notesOf("message Stopping after the current source").size(), 1);
    EXPECT_LE(notesOf("analysing").size(), 2);
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
}

TEST_F(BatchRunnerTest, aSecondInterruptionQuitsAtOnce)
{
    start({clip("a.mts"), clip("b.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Decode));
    runner.interrupt();
    EXPECT_FALSE(face.terminated);
    runner.interrupt();
    EXPECT_TRUE(face.terminated);
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_TRUE(tools.running().isEmpty());
}

TEST_F(BatchRunnerTest, terminationEndsTheEncoderAndItsOutput)
{
    start({clip("a.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Encode));
    const FakeTools::Launch encode = tools.current(ToolKind::Encode);
    tools.writeFiles(encode);
    ASSERT_TRUE(itemExists(encode.output()));
    runner.terminate();
    EXPECT_TRUE(face.terminated);
    EXPECT_EQ(face.exitCode(), exitSomeFailed);
    EXPECT_TRUE(tools.running().isEmpty());
    EXPECT_FALSE(itemExists(encode.output()));
}

TEST_F(BatchRunnerTest, theEncoderIsStoppedAndContinuedWithTheProgram)
{
    start({clip("a.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Encode));
    const FakeTools::Launch encode = tools.current(ToolKind::Encode);
    runner.suspend();
    EXPECT_TRUE(encode.launcher->isSuspended());
    runner.resume();
    EXPECT_FALSE(encode.launcher->isSuspended());
    runner.resume();
    EXPECT_FALSE(encode.launcher->isSuspended()) << "what was not stopped here is not continued";
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitAllDone);
}

TEST_F(BatchRunnerTest, suspendingTheAnalysisIsHarmless)
{
    start({clip("a.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Decode));
    runner.suspend();
    runner.resume();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitAllDone);
}

TEST_F(BatchRunnerTest, aDryRunMakesNothing)
{
    BatchRunner dry(&controller, &face, &reporter, {true, true});
    controller.disconnect(&runner);
    const QString film = clip("film.mts");
    tools.clips[film].width = 1920;
    controller.setReplacePolicy(0);
    dry.start({clip("a.mts"), film, clip("b.mts")});
    settle();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), exitAllDone);
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_EQ(notesOf("planned").size(), 2);
    EXPECT_TRUE(notesOf("planned").first().startsWith(text("planned 1/2 a.mts format 3 ")));
    EXPECT_TRUE(notesOf("planned").first().endsWith(text("a.mov")));
    EXPECT_TEXT(reporter.notes.last(), text("plan of 2, 1 left out, status 0"));
    EXPECT_FALSE(QFileInfo::exists(reporter.folder)) << "not even the folder";
}

TEST_F(BatchRunnerTest, aDryRunTellsWhatStandsInTheWay)
{
    BatchRunner dry(&controller, &face, &reporter, {true, true});
    controller.disconnect(&runner);
    const QString first = folder.makeFile(text("one/a.mts"), "a");
    const QString second = folder.makeFile(text("two/a.mts"), "a");
    const QFile::FileTime written = QFile::FileModificationTime;
    for (const QString& source : {first, second}) {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2011, 7, 2), QTime(10, 12)), written));
    }
    const QString name = dateCreation2iMovieName(first) + text(".mov");
    const QString destination = controller.model().mainEncDstPathStr.stringValue();
    ASSERT_TRUE(QDir().mkpath(destination + text("/Tavrix events")));
    QFile there(destination + text("/Tavrix events/") + name);
    ASSERT_TRUE(there.open(QIODevice::WriteOnly));
    dry.start({first, second});
    settle();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_TEXTS(notesOf("planned"), QStringList({text("planned 1/2 a.mts format 3 ") + name + text(" exists"),
                                                  text("planned 2/2 a.mts format 3 ") + name + text(" exists twice")}));
}

struct KeptCase {
    const char* name;
    bool keptIsFailed;
    int status;
};

class KeptOutput : public BatchRunnerTest, public testing::WithParamInterface<KeptCase>
{
};

// A job that runs every night finds the outputs of the night before.
TEST_P(KeptOutput, givesItsStatus)
{
    const QString source = clip("a.mts");
    const QString destination = controller.model().mainEncDstPathStr.stringValue();
    const QString output = outputPath(destination, dateCreation2iMovieName(source), 3, text("h264"));
    ASSERT_TRUE(QDir().mkpath(destination + text("/Tavrix events")));
    ASSERT_TRUE(writeBytes(output, "precious"));
    BatchRunner other(&controller, &face, &reporter, {false, GetParam().keptIsFailed});
    controller.disconnect(&runner);
    controller.setReplacePolicy(0);
    other.start({source});
    settle();
    ASSERT_TRUE(runToTheEnd());
    EXPECT_EQ(face.exitCode(), GetParam().status);
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_EQ(readBytes(output), QByteArray("precious"));
}

INSTANTIATE_TEST_SUITE_P(Policies, KeptOutput,
                         testing::Values(KeptCase{"kept", true, exitSomeFailed},
                                         KeptCase{"skipped", false, exitAllDone}),
                         rowName<KeptCase>);

// The bar of a second pass counts seconds of the clip against percents of the tool.
TEST_F(BatchRunnerTest, tellsTheTrueFractionOfEachPass)
{
    start({clip("a.mts")});
    ASSERT_TRUE(runUntil(ToolKind::Encode));
    reporter.notes.clear();
    Q_EMIT controller.rowProgress(0, 15, 30);
    Q_EMIT controller.rowStep(0, 1, 2, 0.5);
    Q_EMIT controller.rowStep(0, 2, 2, 0);
    Q_EMIT controller.rowProgress(0, 25, 30);
    Q_EMIT controller.rowStep(0, 2, 2, 0.25);
    Q_EMIT controller.rowStep(0, 2, 2, 0.75);
    EXPECT_TEXTS(reporter.notes,
                 QStringList({text("progress 15 of 30, 1/2 0.50"), text("progress 0 of 30, 2/2 0.00"),
                              text("progress 25 of 30, 2/2 0.25"), text("progress 25 of 30, 2/2 0.75")}));
}

} // namespace
