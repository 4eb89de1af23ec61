// SPDX-License-Identifier: GPL-3.0-or-later
#include "terminal.h"

#include "console/progressline.h"
#include "support/qtprinters.h"
#include "testpaths.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr int columns = 100;

// A Motion-JPEG clip as a photo camera makes it.
bool makeClip(const QString& path)
{
    QProcess process;
    process.start(
        text("/usr/bin/ffmpeg"),
        QStringList{
            text("-nostdin"),    text("-v"),       text("error"), text("-y"),
            text("-f"),          text("lavfi"),    text("-i"),    text("testsrc2=size=1280x720:rate=30:duration=8"),
            text("-f"),          text("lavfi"),    text("-i"),    text("sine=sample_rate=48000:duration=8"),
            text("-c:v"),        text("mjpeg"),    text("-q:v"),  text("8"),
            text("-pix_fmt"),    text("yuvj420p"), text("-c:a"),  text("pcm_s16le"),
            text("file:") + path});
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

class OnATerminal : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        clips = new TempFolder;
        ASSERT_TRUE(makeClip(clips->path(text("MVI_0001.AVI"))));
    }
    static void TearDownTestSuite()
    {
        delete clips;
        clips = nullptr;
    }

    [[nodiscard]] bool start(int format, const QStringList& more = {})
    {
        return terminal.start(
            QStringList{text("--format"), QString::number(format), text("--output"), destination.path()}
            << more << clips->path());
    }
    [[nodiscard]] bool readUntil(const char* expression)
    {
        return terminal.readUntil(QRegularExpression(text(expression)));
    }
    // The one output, its file system number and size; empty when there is none or more than one.
    [[nodiscard]] QString output() const
    {
        const QDir events(destination.path(text("Tavrix events")));
        const QStringList files = events.entryList(QDir::Files | QDir::Hidden);
        return files.size() == 1 ? events.filePath(files.first()) : QString();
    }
    [[nodiscard]] QByteArray outputBytes() const { return readBytes(output()).value_or(QByteArray()); }
    // Puts something where the clip's output belongs, by converting it once.
    void makeOutputOfBefore()
    {
        ASSERT_TRUE(start(3));
        ASSERT_EQ(terminal.finish(), 0) << terminal.shown().toStdString();
        ASSERT_FALSE(output().isNull());
        ASSERT_TRUE(writeBytes(output(), "precious"));
    }

    static TempFolder* clips;
    TempFolder destination;
    Terminal terminal{columns};
};

TempFolder* OnATerminal::clips = nullptr;

TEST_F(OnATerminal, aBarWithAPercentageIsDrawn)
{
    ASSERT_TRUE(start(0));
    EXPECT_EQ(terminal.finish(), 0);
    const QString all = terminal.shown();
    QStringList bars;
    const QStringList drawn = all.split(QRegularExpression(text("\r|\n")));
    for (QString piece : drawn) {
        piece.remove(text("\033[K"));
        if (piece.contains(u'[')) {
            EXPECT_LT(displayWidth(piece), columns) << "a full line would wrap: " << piece.toStdString();
            bars << piece;
        }
    }
    ASSERT_GE(bars.size(), 2) << all.toStdString();
    const QRegularExpression bar(
        text("^1/1 MVI_0001\\.AVI +\\[(#*)(\\.*)\\] +(\\d+) % +\\d+\\.\\dx  (-:--|\\d+:\\d\\d)$"));
    int percentage = 0;
    for (const QString& piece : bars) {
        const QRegularExpressionMatch match = bar.match(piece);
        ASSERT_TRUE(match.hasMatch()) << piece.toStdString();
        EXPECT_GE(match.captured(3).toInt(), percentage) << "progress never goes back";
        percentage = match.captured(3).toInt();
    }
    EXPECT_GT(percentage, 0);
    EXPECT_LE(percentage, 100);
    EXPECT_TRUE(all.contains(text("1 done, 0 incomplete, 0 failed, 0 left out")));
    EXPECT_TRUE(all.contains(output())) << "the summary names the output";
}

TEST_F(OnATerminal, anExistingOutputIsKeptWhenTheAnswerIsTwo)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3, {text("--existing"), text("ask")}));
    ASSERT_TRUE(readUntil("1\\) Replace 2\\) Keep")) << terminal.shown().toStdString();
    terminal.type("2\n");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_EQ(outputBytes(), "precious");
    EXPECT_TRUE(terminal.shown().contains(text("a file with this name already existed and was kept")));
}

TEST_F(OnATerminal, anExistingOutputIsReplacedWhenTheAnswerIsOne)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3));
    ASSERT_TRUE(readUntil("1\\) Replace 2\\) Keep")) << "a terminal is asked without being told";
    terminal.type("nonsense\n");
    ASSERT_TRUE(readUntil("1\\) Replace 2\\) Keep")) << "what is no answer is asked again";
    terminal.type("1\n");
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_GT(outputBytes().size(), 200000);
}

TEST_F(OnATerminal, nothingIsAskedWhenTheCommandSaysWhatToDo)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3, {text("--existing=keep")}));
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_FALSE(terminal.shown().contains(text("1) Replace")));
    EXPECT_EQ(outputBytes(), "precious");
}

TEST_F(OnATerminal, aSkippedOutputIsNoFailure)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3, {text("--existing=skip")}));
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_EQ(outputBytes(), "precious");
    EXPECT_TRUE(terminal.shown().contains(text("Kept 1/1: MVI_0001.AVI"))) << terminal.shown().toStdString();
    EXPECT_FALSE(terminal.shown().contains(text("FAILED")));
}

TEST_F(OnATerminal, aDryRunListsTheNameAndMakesNothing)
{
    const QString missing = destination.path(text("not there"));
    ASSERT_TRUE(terminal.start({text("-nf5"), text("-o"), missing, clips->path()}));
    EXPECT_EQ(terminal.finish(), 0);
    const QRegularExpression line(text("1/1 MVI_0001\\.AVI: ProRes, about \\d+ MB, becomes clip-.*MVI_0001\\.mov"));
    EXPECT_TRUE(line.match(terminal.shown()).hasMatch()) << terminal.shown().toStdString();
    EXPECT_FALSE(QFileInfo::exists(missing));
}

// The bar once stood at 100 % for most of the time that a clip took.
TEST_F(OnATerminal, bothStepsTellHowFarTheyAre)
{
    ASSERT_TRUE(start(5));
    EXPECT_EQ(terminal.finish(), 0) << terminal.shown().toStdString();
    const QRegularExpression step(text("step (\\d)/2 +(\\d+) %"));
    QSet<int> second;
    int last = 0;
    for (auto match = step.globalMatch(terminal.shown()); match.hasNext();) {
        const QRegularExpressionMatch one = match.next();
        ASSERT_GE(one.captured(1).toInt(), last) << "no step comes back";
        last = one.captured(1).toInt();
        if (last == 2) {
            second << one.captured(2).toInt();
        }
    }
    EXPECT_TRUE(second.contains(0));
    EXPECT_GT(second.size(), 2) << terminal.shown().toStdString();
}

TEST_F(OnATerminal, ctrlCAtTheQuestionKeepsTheOutputAndEnds)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3, {text("--existing=ask")}));
    ASSERT_TRUE(readUntil("1\\) Replace 2\\) Keep"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_EQ(outputBytes(), "precious");
}

TEST_F(OnATerminal, theEndOfTheInputAtTheQuestionKeepsTheOutput)
{
    makeOutputOfBefore();
    ASSERT_TRUE(start(3));
    ASSERT_TRUE(readUntil("1\\) Replace 2\\) Keep"));
    terminal.type("\x04");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_TRUE(terminal.shown().contains(text("No answer [Keep]"))) << terminal.shown().toStdString();
    EXPECT_EQ(outputBytes(), "precious");
}

TEST_F(OnATerminal, aFolderThatCannotBeMadeIsToldWithoutLogLines)
{
    ASSERT_TRUE(terminal.start({text("--output"), text("/dev/null/x"), clips->path()}));
    EXPECT_EQ(terminal.finish(), 2);
    EXPECT_TRUE(terminal.shown().startsWith(text("tavrix-batch: /dev/null/x"))) << terminal.shown().toStdString();
}

TEST_F(OnATerminal, ctrlCStopsTheBatch)
{
    ASSERT_TRUE(start(0));
    ASSERT_TRUE(readUntil("\\] +\\d+ %"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_TRUE(terminal.shown().contains(text("stopped"))) << terminal.shown().toStdString();
    EXPECT_TRUE(output().isNull());
}

// Exit status of a shell script whose "$@" is the console program with its arguments; -1 when it did not end in time.
int runScript(const char* script, const TempFolder& home, const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("HOME"), home.path());
    environment.insert(text("TMPDIR"), home.path());
    process.setProcessEnvironment(environment);
    process.start(text("/bin/bash"),
                  QStringList{text("-c"), text(script), text("bash"), text(TAVRIX_BUILD_BIN "/tavrix-batch")}
                      << arguments);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

TEST_F(OnATerminal, aReaderThatGoesAwayEndsTheBatchAndItsTemporaryFiles)
{
    const TempFolder home;
    EXPECT_EQ(runScript("\"$@\" </dev/null | head -n 1; exit ${PIPESTATUS[0]}", home,
                        {text("--format"), text("0"), text("--output"), destination.path(), clips->path()}),
              1);
    EXPECT_TRUE(output().isNull());
    EXPECT_TRUE(QDir(home.path(text("Tavrix"))).isEmpty());
}

TEST_F(OnATerminal, closedStandardStreamsDoNotHinderTheBatch)
{
    const TempFolder home;
    EXPECT_EQ(runScript("exec \"$@\" <&- >&- 2>&-", home, {text("--output"), destination.path(), clips->path()}), 0);
    EXPECT_FALSE(output().isNull());
}

TEST_F(OnATerminal, aPipeInThePlaceOfTheOutputIsKept)
{
    makeOutputOfBefore();
    const QByteArray path = output().toUtf8();
    ASSERT_TRUE(QFile::remove(output()));
    ASSERT_EQ(::mkfifo(path.constData(), 0600), 0);
    ASSERT_TRUE(start(3, {text("--existing=replace")}));
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_TRUE(terminal.shown().contains(text("is no ordinary file")));
}

struct CommandCase {
    const char* name;
    QStringList arguments;
    int status;
    const char* shown;
};

class Command : public testing::TestWithParam<CommandCase>
{
};

TEST_P(Command, endsWithItsStatus)
{
    Terminal terminal(columns);
    ASSERT_TRUE(terminal.start(GetParam().arguments));
    EXPECT_EQ(terminal.finish(), GetParam().status);
    EXPECT_TRUE(terminal.shown().contains(text(GetParam().shown))) << terminal.shown().toStdString();
}

const CommandCase commandCases[] = {
    {"help", {text("--help")}, 0, "Usage: tavrix-batch"},
    {"version", {text("--version")}, 0, "tavrix-batch 1."},
    {"noSource", {}, 2, "tavrix-batch: no file or folder given"},
    {"unknownOption", {text("--fast"), text("/")}, 2, "tavrix-batch: unknown option --fast"},
    {"theWayToTheHelp", {text("--fast"), text("/")}, 2, "Try 'tavrix-batch --help'."},
    {"missingSource", {text("/nowhere/a.mts")}, 2, "/nowhere/a.mts: no such file or folder, or not readable"},
    {"badOutput", {text("--output"), text("/dev/null/x"), text("/dev")}, 2, "/dev/null/x: this folder cannot be made"},
    {"nothingKnown", {text("/dev/null")}, 3, "Nothing to convert: no file of a known type among the sources"},
};

INSTANTIATE_TEST_SUITE_P(Lines, Command, testing::ValuesIn(commandCases), rowName<CommandCase>);

} // namespace
