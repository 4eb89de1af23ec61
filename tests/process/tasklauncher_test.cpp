// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/tasklauncher.h"
#include "processsupport.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include "base/bundle/bundle.h"
#include "base/text/paths.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QDir>

#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct CodeRow {
    const char* name;
    QStringList arguments;
    int code;
    bool runningAfterwards;
};

class LaunchCode : public testing::TestWithParam<CodeRow>
{
};

TEST_P(LaunchCode, IsReturnedWithoutCallback)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    EXPECT_EQ(launcher.launchTasksWithArguments(GetParam().arguments), GetParam().code);
    EXPECT_EQ(launcher.isRunning(), GetParam().runningAfterwards);
    launcher.suspend();
    launcher.resume();
    launcher.terminate();
    QCoreApplication::processEvents();
    EXPECT_TEXTS(recorder.events, QStringList());
    EXPECT_FALSE(hasChildren());
}

const QString bar = QStringLiteral("|");
const QString unknown = QStringLiteral("nosuchprogram");

INSTANTIATE_TEST_SUITE_P(
    Lists, LaunchCode,
    testing::Values(CodeRow{"Empty", {}, 1, false}, CodeRow{"BarOnly", {bar}, 2, true},
                    CodeRow{"BarFirst", {bar, fakeChild()}, 2, true},
                    CodeRow{"BarDoubled", {fakeChild(), bar, bar, fakeChild()}, 2, true},
                    CodeRow{"BarDoubledBeforeLookUp", {unknown, bar, bar}, 2, true},
                    CodeRow{"BarLast", {fakeChild(), bar}, 3, true}, CodeRow{"Unknown", {unknown}, 3, true},
                    CodeRow{"UnknownSecond", {fakeChild(), bar, unknown}, 3, true},
                    CodeRow{"EmptyName", {QStringLiteral("")}, 3, true},
                    CodeRow{"OnlyInSearchPath", {QStringLiteral("sleep"), QStringLiteral("0")}, 3, true}),
    rowName<CodeRow>);

struct EndRow {
    const char* name;
    QStringList actions;
    int status;
    const char* text;
    bool bySignal = false;
};

class NaturalEnd : public testing::TestWithParam<EndRow>
{
};

TEST_P(NaturalEnd, IsReportedOnceAfterAllOutput)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(GetParam().actions)), 0);
    EXPECT_TRUE(launcher.isRunning());
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(launcher.terminationStatus(), GetParam().status);
    EXPECT_EQ(launcher.endedBySignal(), GetParam().bySignal);
    EXPECT_FALSE(launcher.isRunning());
    EXPECT_TEXT(recorder.text, text(GetParam().text));
    EXPECT_TEXT(recorder.events.last(), QStringLiteral("end:%1").arg(GetParam().status));
    launcher.terminate();
    QCoreApplication::processEvents();
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(launcher.terminationStatus(), GetParam().status) << "a later kill must leave the natural status";
    EXPECT_FALSE(hasChildren());
}

QStringList words(const char* utf8)
{
    return QString::fromUtf8(utf8).split(QLatin1Char(' '));
}

INSTANTIATE_TEST_SUITE_P(Children, NaturalEnd,
                         testing::Values(EndRow{"Silent", words("exit 0"), 0, nullptr},
                                         EndRow{"Status", words("exit 7"), 7, nullptr},
                                         EndRow{"StatusOfSignal", words("signal 9"), 9, nullptr, true},
                                         EndRow{"Crash", words("out last crash"), 11, "last", true},
                                         EndRow{"HalfALine", words("out half"), 0, "half"},
                                         EndRow{"BrokenUtf8GivesNoText", words("bytes 41c3"), 0, nullptr},
                                         EndRow{"ErrorStream", words("err oops exit 3"), 3, "oops"},
                                         EndRow{"NullInput", words("cat outline done"), 0, "done\n"},
                                         EndRow{"ClosedOutput", words("out a closeout exit 5"), 5, "a"}),
                         rowName<EndRow>);

TEST(TaskLauncher, PassesArgumentsUntouchedButForTildes)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    const QString spaced = QStringLiteral("a b;$(touch x)'\"");
    ASSERT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("argv"), spaced, QStringLiteral("~/clip"),
                                                      QStringLiteral("~/a://b"), QStringLiteral("é")})),
              0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXT(recorder.text, spaced + QLatin1Char('\n') + homeFolder() + QStringLiteral("/clip\n~/a://b\né\n"));
}

TEST(TaskLauncher, DeliversOnlyTheLastProcessOfAChain)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("out"), QStringLiteral("through")}) +
                                                QStringList(bar) + fake(words("cat err +err exit 4"))),
              0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TRUE(recorder.text == QLatin1String("through+err") || recorder.text == QLatin1String("+errthrough"));
    EXPECT_EQ(launcher.terminationStatus(), 4);
    EXPECT_FALSE(hasChildren());
}

TEST(TaskLauncher, KillsTheRestOfAChainWhoseLastProcessHasEnded)
{
    const TempFolder folder;
    const QString pidPath = folder.path(QStringLiteral("pid"));
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("pid"), pidPath, QStringLiteral("silence")}) +
                                                QStringList(bar) + fake(words("exit 0"))),
              0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(launcher.terminationStatus(), 0);
    EXPECT_FALSE(hasChildren());
}

TEST(TaskLauncher, DeliversEveryByteOfBothStreams)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    launcher.dontConvertDataToString(true);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("flood 3000000"))), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(recorder.data.size(), 6000000);
    EXPECT_EQ(recorder.data.count('x'), 6000000);
    EXPECT_TEXT(recorder.text, QString());
}

TEST(TaskLauncher, DeliversInvalidTextAsBytes)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    launcher.dontConvertDataToString(true);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("bytes 41c3ff00"))), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(recorder.data, QByteArray("A\xC3\xFF\0", 4));
}

// A pipe's whole content comes in one chunk: accented lines are never cut by the reader.
TEST(TaskLauncher, KeepsAccentedTextOfAFullPipeWhole)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    const TempFolder folder;
    const QString marker = folder.path(QStringLiteral("written"));
    QStringList actions;
    for (int line = 0; line < 100; ++line) {
        actions << QStringLiteral("outline") << QString(300, QChar(0xE9));
    }
    actions << QStringLiteral("touch") << marker;
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(actions)), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(recorder.text.size(), 100 * 301);
}

TEST(TaskLauncher, AProgramThatCannotBeExecutedEndsLikeAnyOther)
{
    const TempFolder folder;
    const QString plain = folder.makeFile(QStringLiteral("plain"), "no program");
    for (const QString& program : {folder.path(), plain}) {
        taskLauncher launcher;
        Recorder recorder;
        launcher.setDelegate(&recorder);
        const LogCapture log;
        ASSERT_EQ(launcher.launchTasksWithArguments({program}), 0);
        EXPECT_EQ(recorder.ends, 0) << "the end must not be reported from inside the launch";
        ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
        EXPECT_EQ(launcher.terminationStatus(), 127);
        EXPECT_EQ(log.lines().filter(QStringLiteral("task not started")).size(), 1);
    }
    EXPECT_FALSE(hasChildren());
}

// Gives the process no descriptors for a time.
class NoDescriptors
{
public:
    NoDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit none = before_;
        none.rlim_cur = 3;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    rlimit before_ = {};
};

TEST(TaskLauncher, ALaunchWithoutDescriptorsEndsWithAStatus)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    {
        const NoDescriptors none;
        ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("exit 0"))), 0);
    }
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(launcher.terminationStatus(), 127);
}

TEST(TaskLauncher, FindsResourcesByNameAlsoInTools)
{
    const TempFolder folder;
    const QString before = resourcePath();
    ASSERT_FALSE(folder.makeFolder(QStringLiteral("tools")).isEmpty());
    const QString tool = folder.path(QStringLiteral("tools/shout.sh"));
    ASSERT_TRUE(writeBytes(tool, "#!/bin/sh\necho tool\n"));
    ASSERT_EQ(chmod(QFile::encodeName(tool).constData(), 0700), 0);
    setResourcePath(folder.path());
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    const int code = launcher.launchTasksWithArguments({QStringLiteral("shout.sh")});
    setResourcePath(before);
    ASSERT_EQ(code, 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXT(recorder.text, QStringLiteral("tool\n"));
}

TEST(TaskLauncher, InheritsTheEnvironmentUnchanged)
{
    const EnvironmentChange type("LC_CTYPE", nullptr);
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("env LC_CTYPE"))), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXT(recorder.text, QStringLiteral("(unset)"));
}

// True once the event loop finds nothing to do; a watch that fires without end keeps it busy.
bool comesToRest()
{
    const QDeadlineTimer deadline(10000);
    while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
        if (deadline.hasExpired()) {
            return false;
        }
    }
    return true;
}

TEST(TaskLauncher, AClosedStreamIsNotReadUntilTheProcessEnds)
{
    const TempFolder folder;
    const QString fifo = folder.path(QStringLiteral("fifo"));
    const QString closed = folder.path(QStringLiteral("closed"));
    ASSERT_TRUE(makeFifo(fifo));
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("out early closeout touch") + QStringList(closed) +
                                                     words("wait") + QStringList(fifo) + words("exit 6"))),
              0);
    ASSERT_TRUE(waitUntil([&] { return recorder.text == QLatin1String("early") && itemExists(closed); }));
    EXPECT_TRUE(comesToRest()) << "the end of the stream must not be read again and again";
    EXPECT_EQ(recorder.ends, 0);
    ASSERT_TRUE(waitUntil([&] { return releaseFifo(fifo); }));
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(launcher.terminationStatus(), 6);
}

class BackgroundJob : public testing::TestWithParam<const char*>
{
};

TEST_P(BackgroundJob, DoesNotDelayTheEnd)
{
    const TempFolder folder;
    const QString pidPath = folder.path(QStringLiteral("pid"));
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    launcher.dontConvertDataToString(true);
    ASSERT_EQ(launcher.launchTasksWithArguments(
                  fake({QString::fromLatin1(GetParam()), pidPath, QStringLiteral("out"), QStringLiteral("last")})),
              0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TRUE(recorder.data.contains("last"));
    EXPECT_EQ(launcher.terminationStatus(), 0);
    const pid_t background = waitForPid(pidPath);
    ASSERT_GT(background, 0);
    kill(background, SIGKILL);
}

INSTANTIATE_TEST_SUITE_P(Kinds, BackgroundJob, testing::Values("holder", "flooder"),
                         [](const auto& row) { return std::string(row.param); });

TEST(TaskLauncher, TwoLaunchersDoNotInheritEachOthersPipes)
{
    const TempFolder folder;
    const QString fifo = folder.path(QStringLiteral("fifo"));
    ASSERT_TRUE(makeFifo(fifo));
    taskLauncher first;
    taskLauncher second;
    Recorder firstRecorder;
    Recorder secondRecorder;
    first.setDelegate(&firstRecorder);
    second.setDelegate(&secondRecorder);
    ASSERT_EQ(first.launchTasksWithArguments(fake({QStringLiteral("wait"), fifo})), 0);
    ASSERT_EQ(second.launchTasksWithArguments(fake(words("fds"))), 0);
    ASSERT_TRUE(waitUntil([&] { return secondRecorder.ends > 0; }));
    EXPECT_TEXT(secondRecorder.text, QStringLiteral("0 1 2 "));
    ASSERT_TRUE(waitUntil([&] { return releaseFifo(fifo); }));
    ASSERT_TRUE(waitUntil([&] { return firstRecorder.ends > 0; }));
}

TEST(TaskLauncher, ManyRunsLeaveNoDescriptorAndNoZombie)
{
    Recorder recorder;
    int before = 0;
    for (int run = 0; run < 200; ++run) {
        auto launcher = std::make_unique<taskLauncher>();
        launcher->setDelegate(&recorder);
        ASSERT_EQ(launcher->launchTasksWithArguments(fake(words("out x")) + QStringList(bar) + fake(words("cat"))), 0);
        if (run % 3 == 0) {
            launcher->terminate();
        } else if (run % 3 == 1) {
            ASSERT_TRUE(waitUntil([&] { return recorder.ends == run + 1; }));
        } else {
            ++recorder.ends;
        }
        launcher.reset();
        ASSERT_EQ(recorder.ends, run + 1);
        if (run == 10) {
            before = openDescriptors();
        }
    }
    EXPECT_TRUE(waitUntil([] { return !hasChildren(); }));
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= before; }));
}

TEST(TaskLauncher, ASecondLaunchAfterTheEndIsNotReported)
{
    taskLauncher launcher;
    Recorder recorder;
    launcher.setDelegate(&recorder);
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("exit 1"))), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("out again exit 2"))), 0);
    ASSERT_TRUE(waitUntil([&] { return !launcher.isRunning(); }));
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(launcher.terminationStatus(), 2);
}

TEST(TaskLauncher, WorksWithoutADelegate)
{
    taskLauncher launcher;
    ASSERT_EQ(launcher.launchTasksWithArguments(fake(words("out unheard exit 3"))), 0);
    ASSERT_TRUE(waitUntil([&] { return !launcher.isRunning(); }));
    EXPECT_EQ(launcher.terminationStatus(), 3);
    EXPECT_EQ(launcher.delegate(), nullptr);
}

} // namespace
