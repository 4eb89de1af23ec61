// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "process/backgroundrun.h"
#include "process/processinfo.h"
#include "processsupport.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

TEST(BackgroundRun, CommandQuotesUnsafeElements)
{
    const LogCapture log;
    EXPECT_TEXT(backgroundRunCommand({QStringLiteral("/bin/echo"), QStringLiteral("a b"), QStringLiteral("say(\"$x\")"),
                                      QStringLiteral("|"), QStringLiteral("c")}),
                QStringLiteral("/bin/echo \"a b\" \"say(\\\"\\$x\\\")\" | c"));
    EXPECT_TRUE(log.contains(QStringLiteral("pathSafeStr()       :-( a b")));
}

struct TextRow {
    const char* name;
    const char* text;
    const char* answer;
};

class RunName : public testing::TestWithParam<TextRow>
{
};

TEST_P(RunName, IsTheFirstWordOrTheQuotedPath)
{
    EXPECT_TEXT(backgroundRunName(text(GetParam().text)), text(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(Commands, RunName,
                         testing::Values(TextRow{"Existing", "/bin/sh -c x", "/bin/sh"},
                                         TextRow{"ExistingAlone", "/bin/sh", "/bin/sh"},
                                         TextRow{"Quoted", "\"/a b/tool\" -x \"y\" z", "\"/a b/tool\""},
                                         TextRow{"NoQuote", "nosuch -x", "nosuch -x\""}),
                         rowName<TextRow>);

struct PidRow {
    const char* name;
    const char* answer;
    int shellPid;
    int pid;
};

class RunPid : public testing::TestWithParam<PidRow>
{
};

TEST_P(RunPid, ComesFromTheFirstOfSeveralLines)
{
    EXPECT_EQ(backgroundRunPid(text(GetParam().answer), GetParam().shellPid), GetParam().pid);
}

INSTANTIATE_TEST_SUITE_P(Answers, RunPid,
                         testing::Values(PidRow{"TwoLines", "120\n121", 100, 120}, PidRow{"OneLine", "120", 100, 0},
                                         PidRow{"Older", "90\n121", 100, 0}, PidRow{"Same", "100\n121", 100, 0},
                                         PidRow{"Empty", "", 100, 0}, PidRow{"Nothing", nullptr, 100, 0},
                                         PidRow{"NoNumber", "x\ny", 100, 0}, PidRow{"Blanks", "  300\n121", 100, 300}),
                         rowName<PidRow>);

struct SecondsRow {
    const char* name;
    const char* text;
    double seconds;
};

class RunSeconds : public testing::TestWithParam<SecondsRow>
{
};

TEST_P(RunSeconds, ComeFromTheLastLineWithATime)
{
    EXPECT_DOUBLE_EQ(backgroundRunSeconds(text(GetParam().text)), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RunSeconds,
    testing::Values(SecondsRow{"Line", "frame=1 time=2.50 bitrate= 1.0kbits/s", 2.5},
                    SecondsRow{"LastOfTwo", "time=1.00 bitrate=x\ntime=7.00 bitrate=x\nthe end", 7},
                    SecondsRow{"CarriageReturns", "time=1.00 bitrate=x\rtime=3.00 bitrate=x\r", 3},
                    SecondsRow{"LineLessThreeCharacters", "time=125 ms", 125}, SecondsRow{"NothingLeft", "time=12", 0},
                    SecondsRow{"Timecode", "time=00:00:02.50 bitrate=x", 2.5},
                    SecondsRow{"None", "no such thing\n", -1}, SecondsRow{"Empty", "", -1},
                    SecondsRow{"Nothing", nullptr, -1}),
    rowName<SecondsRow>);

struct Seen {
    double maximum = -1;
    QList<double> values;
};

BackgroundRunIndicator indicatorInto(Seen& seen)
{
    return {[&seen](double, double maximum) { seen.maximum = maximum; },
            [&seen](double value) {
                seen.values << value;
            }};
}

TEST(BackgroundRun, WatchesTheToolUntilItHasEnded)
{
    const TempFolder folder;
    const QString pidPath = folder.path(QStringLiteral("tool pid"));
    // The run is looked for by its name, which other tests' children must not bear.
    const QString tool = folder.path(QStringLiteral("tool"));
    ASSERT_TRUE(QFile::link(fakeChild(), tool));
    Seen seen;
    const LogCapture log;
    taskcontrollerBasic(QStringList(tool) +
                            QStringList({QStringLiteral("pid"), pidPath, QStringLiteral("flood"), QStringLiteral("0"),
                                         QStringLiteral("progress"), QStringLiteral("20"), QStringLiteral("100")}),
                        nullptr, {}, {}, indicatorInto(seen), 60);
    EXPECT_EQ(seen.maximum, 60);
    ASSERT_GE(seen.values.size(), 3);
    EXPECT_EQ(seen.values.first(), 0);
    EXPECT_EQ(seen.values.last(), 60);
    EXPECT_TRUE(std::any_of(seen.values.cbegin() + 1, seen.values.cend() - 1,
                            [](double value) { return value > 0 && value <= 20; }));
    const pid_t pid = pidInFile(pidPath);
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(isGone(pid));
    EXPECT_FALSE(itemExists(cachesFolder() + QStringLiteral("/tmpProcess.txt")));
    EXPECT_TRUE(log.contains(QStringLiteral("btRect : x=266, y=94, dim=38x18")));
}

TEST(BackgroundRun, AToolThatCannotBeStartedEndsAtOnce)
{
    Seen seen;
    const LogCapture log;
    taskcontrollerBasic({QStringLiteral("/nosuch/tool")}, nullptr, {1, 2, 3, 4}, {}, indicatorInto(seen), 5);
    EXPECT_EQ(seen.values.first(), 0);
    EXPECT_EQ(seen.values.last(), 5);
    EXPECT_TRUE(log.lines().filter(QStringLiteral("btRect")).isEmpty());
}

TEST(BackgroundRun, IndicatorFunctionsAreOptional)
{
    taskcontrollerBasic({QStringLiteral("/bin/true")}, nullptr, {}, {}, {}, 5);
    EXPECT_FALSE(itemExists(cachesFolder() + QStringLiteral("/tmpProcess.txt")));
    taskcontrollerBasic({}, nullptr, {}, {}, {}, 5);
    EXPECT_FALSE(hasChildren());
}

TEST(ProcessInfo, AZombieHasEnded)
{
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        for (;;) {
            pause();
        }
    }
    const ProcessIdentity identity = processIdentity(pid);
    EXPECT_TRUE(isRunningAs(identity));
    EXPECT_FALSE(isRunningAs({pid, identity.startTime + 1})) << "another process with the same number";
    kill(pid, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return processState(pid) == 'Z'; }));
    EXPECT_FALSE(isRunningAs(identity));
    ASSERT_EQ(waitpid(pid, nullptr, 0), pid);
    EXPECT_FALSE(isRunningAs(identity));
    EXPECT_FALSE(isRunningAs(processIdentity(0)));
}

} // namespace
