// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "base/text/paths.h"
#include "process/capturedrun.h"
#include "process/runners.h"
#include "processsupport.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ShellRow {
    const char* name;
    const char* command;
    const char* withStr; // null: nothing
    const char* basic;
};

class ShellText : public testing::TestWithParam<ShellRow>
{
};

TEST_P(ShellText, IsAnsweredByBothRunners)
{
    EXPECT_TEXT(taskWithStr(text(GetParam().command)), text(GetParam().withStr));
    EXPECT_TEXT(taskWithStrBasic(text(GetParam().command)), text(GetParam().basic));
}

INSTANTIATE_TEST_SUITE_P(Commands, ShellText,
                         testing::Values(ShellRow{"OneLine", "/bin/echo 123", "123\n", "123"},
                                         ShellRow{"TwoLines", "/bin/echo 1; /bin/echo 2", "1\n2\n", "1\n2"},
                                         ShellRow{"NoNewline", "printf abc", "abc", "abc"},
                                         ShellRow{"OnlyOneNewlineGoes", "printf 'a\\n\\n'", "a\n\n", "a\n"},
                                         ShellRow{"Empty", "true", nullptr, ""},
                                         ShellRow{"StatusDoesNotMatter", "printf x; exit 9", "x", "x"},
                                         ShellRow{"Undecodable", "printf 'a\\303'", "", nullptr},
                                         ShellRow{"ErrorStreamIsNotCollected", "echo o; echo e >&2", "o\n", "o"},
                                         ShellRow{"QuotedAmpersandGreater", "echo 'a &> b'", "a &> b\n", "a &> b"},
                                         ShellRow{"NullInput", "cat; echo end", "end\n", "end"},
                                         ShellRow{"Locale", "printf %s \"$LC_CTYPE\"", "en_US.UTF-8", "en_US.UTF-8"},
                                         ShellRow{"BrokenPipeIsQuiet", "yes 2>&1 | head -1", "y\n", "y"},
                                         ShellRow{"Nothing", nullptr, nullptr, nullptr}),
                         rowName<ShellRow>);

// The whole program waits for such a child: a disk that does not answer would hang it.
TEST(Runners, EndAChildThatSaysAndDoesNothing)
{
    const LogCapture log;
    setCapturedSilence(600);
    EXPECT_TEXT(taskWithStr(QStringLiteral("echo early; sleep 1000")), text(nullptr));
    setCapturedSilence(0);
    EXPECT_TRUE(
        log.contains(QStringLiteral("task failure        :-( /bin/sh : it said and did nothing and was ended")));
    EXPECT_FALSE(hasChildren());
}

TEST(Runners, CollectMoreThanAPipeHolds)
{
    for (const int size : {65536, 65537, 3000000}) {
        const QString command = QStringLiteral("head -c %1 /dev/zero | tr '\\0' x").arg(size);
        EXPECT_EQ(taskWithStr(command), QString(size, QLatin1Char('x')));
    }
}

TEST(Runners, BothStreamsRedirectionIsUnderstood)
{
    const TempFolder folder;
    const QString capture = folder.path(QStringLiteral("f"));
    EXPECT_TEXT(taskWithStr(QStringLiteral("echo o &>") + capture), QString());
    EXPECT_EQ(readBytes(capture), QByteArray("o\n"));
    EXPECT_TEXT(taskWithStrBasic(QStringLiteral("(sleep 0.2; echo o; echo e >&2) &>") + capture), QStringLiteral(""));
    EXPECT_EQ(readBytes(capture), QByteArray("o\ne\n")) << "the command must not run in the background";
}

TEST(Runners, ABackgroundJobDoesNotDelayThem)
{
    const QString answer = taskWithStrBasic(QStringLiteral("sleep 5000 & /bin/echo $!"));
    ASSERT_GT(answer.toInt(), 0);
    EXPECT_EQ(kill(answer.toInt(), SIGKILL), 0) << "the job must not have been waited for";
}

TEST(Runners, ABackgroundFloodDoesNotKeepThem)
{
    const TempFolder folder;
    const QString pidPath = folder.path(QStringLiteral("pid"));
    const QString answer =
        taskWithStrBasic(fakeChild() + QStringLiteral(" flooder ") + pidPath + QStringLiteral(" 2>/dev/null"));
    EXPECT_FALSE(answer.isNull());
    kill(waitForPid(pidPath), SIGKILL);
}

TEST(Runners, WorkInTheFolderGiven)
{
    const TempFolder folder;
    const LogCapture log;
    EXPECT_TEXT(taskWithStr(QStringLiteral("pwd -P"), folder.path()),
                QFileInfo(folder.path()).canonicalFilePath() + QLatin1Char('\n'));
    EXPECT_TRUE(log.contains(QStringLiteral("cd : ") + folder.path()));
    EXPECT_TEXT(taskWithStr(QStringLiteral("pwd -P"), QStringLiteral("")),
                QDir::current().canonicalPath() + QLatin1Char('\n'));
    EXPECT_TEXT(taskWithStr(QStringLiteral("pwd"), folder.path(QStringLiteral("missing"))), QString());
}

TEST(Runners, AnEmptyAnswerIsLogged)
{
    const LogCapture log;
    EXPECT_TEXT(taskWithStr(QStringLiteral("true")), QString());
    EXPECT_TRUE(log.contains(QStringLiteral("stringOutput        :-/ ''")));
}

TEST(Runners, LeaveNoDescriptorAndNoZombie)
{
    EXPECT_TEXT(taskWithStrBasic(QStringLiteral("echo a")), QStringLiteral("a"));
    const int before = openDescriptors();
    for (int run = 0; run < 100; ++run) {
        EXPECT_TEXT(taskWithStrBasic(QStringLiteral("echo a | cat")), QStringLiteral("a"));
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(Runners, ServeNoEventLoop)
{
    bool served = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { served = true; }, Qt::QueuedConnection);
    EXPECT_TEXT(taskWithStrBasic(QStringLiteral("sleep 0.05; echo a")), QStringLiteral("a"));
    EXPECT_FALSE(served);
    QCoreApplication::processEvents();
    EXPECT_TRUE(served);
}

TEST(Runners, AKilledProgramLeavesNoChildBehind)
{
    const TempFolder folder;
    const QString pidPath = folder.path(QStringLiteral("pid"));
    const pid_t parent = fork();
    ASSERT_GE(parent, 0);
    if (parent == 0) {
        const QString answer = taskWithStr(QStringLiteral("exec ") + fakeChild() + QStringLiteral(" pid ") + pidPath +
                                           QStringLiteral(" silence"));
        _exit(answer.isNull() ? 0 : 1);
    }
    const pid_t child = waitForPid(pidPath);
    ASSERT_GT(child, 0);
    kill(parent, SIGKILL);
    ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
    EXPECT_TRUE(waitUntil([&] { return isGone(child); }));
}

// The system refuses to watch more descriptors than a process may have.
TEST(Runners, AChildThatCannotBeWatchedIsKilledAndGivesNothing)
{
    const LogCapture log;
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    ChildSetup setup;
    setup.program = fakeChild();
    setup.arguments = QStringList({QStringLiteral("out"), QStringLiteral("half"), QStringLiteral("silence")});
    int pid = 0;
    const std::optional<CapturedRun> run = runCaptured(setup, false, [&](int started) {
        pid = started;
        const rlimit one = {1, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &one);
    });
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(run.has_value());
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(waitUntil([&] { return isGone(pid); }));
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(log.lines().filter(QStringLiteral("task failure        :-( ")).size(), 1);
}

// A temporary and a resource folder for taskArray.
class TaskArray : public testing::Test
{
protected:
    TaskArray()
    {
        setTMPFOLDER(folder.path() + QLatin1Char('/'));
        folder.makeFolder(QStringLiteral("resources/tools"));
        setResourcePath(folder.path(QStringLiteral("resources")));
    }
    ~TaskArray() override
    {
        setTMPFOLDER(QString());
        setResourcePath(resourcesBefore);
    }

    void makeTool(const QString& name, const QByteArray& body) const
    {
        const QString path = folder.path(QStringLiteral("resources/") + name);
        ASSERT_TRUE(writeBytes(path, "#!/bin/sh\n" + body));
        ASSERT_EQ(chmod(QFile::encodeName(path).constData(), 0700), 0);
    }

    const TempFolder folder;
    const QString resourcesBefore = resourcePath();
    const QString capture = folder.path(QStringLiteral("taskData.txt"));
};

TEST_F(TaskArray, ReturnsTheOutputLessOneNewline)
{
    EXPECT_TEXT(taskArray(fake({QStringLiteral("outline"), QStringLiteral("one"), QStringLiteral("outline"),
                                QStringLiteral("two"), QStringLiteral("exit"), QStringLiteral("5")}),
                          false),
                QStringLiteral("one\ntwo"));
    EXPECT_EQ(readBytes(capture), QByteArray("\xEF\xBB\xBFone\ntwo\n"));
    struct stat info = {};
    ASSERT_EQ(stat(QFile::encodeName(capture).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST_F(TaskArray, CollectsTheErrorStreamOnlyWhenAsked)
{
    const QStringList actions =
        fake({QStringLiteral("out"), QStringLiteral("a"), QStringLiteral("err"), QStringLiteral("b")});
    EXPECT_TEXT(taskArray(actions, true), QStringLiteral("ab"));
    EXPECT_TEXT(taskArray(fake({QStringLiteral("flood"), QStringLiteral("200000")}), true),
                QString(400000, QLatin1Char('x')));
}

TEST_F(TaskArray, AShorterOutputKeepsTheOlderTail)
{
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("long answer")}), false),
                QStringLiteral("long answer"));
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("new")}), false), QStringLiteral("newg answer"));
}

TEST_F(TaskArray, FindsToolsByPathAndAmongTheResourcesOnly)
{
    makeTool(QStringLiteral("tools/ffmpeg"), "echo tool ffmpeg\n");
    makeTool(QStringLiteral("plain.tool"), "echo plain\n");
    EXPECT_TEXT(taskArray({QStringLiteral("ffmpeg")}, false), QStringLiteral("tool ffmpeg"));
    ASSERT_TRUE(QFile::remove(capture));
    EXPECT_TEXT(taskArray({QStringLiteral("plain.tool")}, false), QStringLiteral("plain"));
}

TEST_F(TaskArray, AToolThatIsOnlyInTheSearchPathIsNotFound)
{
    EXPECT_TEXT(taskArray({QStringLiteral("env")}, false), QString());
    EXPECT_EQ(readBytes(capture), QByteArray("\xEF\xBB\xBF")) << "the mark is written before the look-up";
    EXPECT_TEXT(taskArray({}, false), QString());
    makeTool(QStringLiteral("../outside"), "echo outside\n");
    EXPECT_TEXT(taskArray({QStringLiteral("../outside")}, false), QString());
}

TEST_F(TaskArray, ExpandsTildesExceptInAddresses)
{
    EXPECT_TEXT(taskArray(fake({QStringLiteral("argv"), QStringLiteral("~/a"), QStringLiteral("~/b://c"),
                                QStringLiteral("x y;'\"")}),
                          false),
                homeFolder() + QStringLiteral("/a\n~/b://c\nx y;'\""));
}

TEST_F(TaskArray, GivesNullInputAndTheLocale)
{
    EXPECT_TEXT(taskArray(fake({QStringLiteral("cat"), QStringLiteral("env"), QStringLiteral("LC_CTYPE")}), false),
                QStringLiteral("en_US.UTF-8"));
}

TEST_F(TaskArray, AnUnusableCaptureFileGivesNothing)
{
    setTMPFOLDER(folder.path(QStringLiteral("missing/")));
    LogCapture log;
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("a")}), false), QString());
    EXPECT_TRUE(log.contains(QStringLiteral("task failure        :-( !fileReadWrite")));
}

TEST_F(TaskArray, APlantedLinkIsNotWrittenThrough)
{
    const QString victim = folder.makeFile(QStringLiteral("victim"), "precious");
    ASSERT_EQ(symlink(QFile::encodeName(victim).constData(), QFile::encodeName(capture).constData()), 0);
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("a")}), false), QString());
    EXPECT_EQ(readBytes(victim), QByteArray("precious"));
}

TEST_F(TaskArray, AToolThatCannotBeExecutedGivesNothing)
{
    EXPECT_TEXT(taskArray({folder.path()}, false), QString());
}

TEST_F(TaskArray, ATailCutInsideACharacterIsNoText)
{
    EXPECT_TEXT(taskArray(fake({QStringLiteral("bytes"), QStringLiteral("c3a9c3a9")}), false), QStringLiteral("éé"));
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("x")}), false), QString());
}

TEST_F(TaskArray, LogsTheProcessIdWhenDebugging)
{
    LogCapture log;
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("a")}), false), QStringLiteral("a"));
    EXPECT_TRUE(log.lines().filter(QStringLiteral("PID current")).isEmpty());
    setDEBUG(1);
    EXPECT_TEXT(taskArray(fake({QStringLiteral("out"), QStringLiteral("a")}), false), QStringLiteral("a"));
    setDEBUG(0);
    EXPECT_EQ(log.lines().filter(QStringLiteral("PID current        : ")).size(), 1);
}

TEST_F(TaskArray, TheToolIsLookedForInThreePlacesInOrder)
{
    EXPECT_TEXT(ffmpegPathStr(), QStringLiteral(""));
    const QString support = supportFolder();
    ASSERT_TRUE(QDir().mkpath(support));
    const QString last = support + QStringLiteral("/ffmpeg");
    ASSERT_TRUE(writeBytes(last, "x"));
    EXPECT_TEXT(ffmpegPathStr(), last);
    const QString second = folder.makeFile(QStringLiteral("resources/tools/ffmpeg"), "x");
    EXPECT_TEXT(ffmpegPathStr(), second);
    const QString first = folder.makeFile(QStringLiteral("resources/ffmpeg"), "x");
    EXPECT_TEXT(ffmpegPathStr(), first);
    QFile::remove(last);
}

} // namespace
