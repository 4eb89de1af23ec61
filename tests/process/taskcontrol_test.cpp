// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/runloopgate.h"
#include "process/notificationcenter.h"
#include "process/tasklauncher.h"
#include "processsupport.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include <QDateTime>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const QString bar = QStringLiteral("|");

// A launcher with a recorder whose child and grandchild tell their ids.
class Control : public testing::Test
{
protected:
    Control() { launcher->setDelegate(&recorder); }

    ~Control() override
    {
        launcher.reset();
        EXPECT_TRUE(waitUntil([] { return !hasChildren(); }));
    }

    void launchFamily()
    {
        ASSERT_EQ(launcher->launchTasksWithArguments(
                      fake({QStringLiteral("holder"), grandchildPath, QStringLiteral("pid"), childPath,
                            QStringLiteral("progress"), QStringLiteral("0"), QStringLiteral("2")})),
                  0);
        child = waitForPid(childPath);
        grandchild = waitForPid(grandchildPath);
        ASSERT_GT(child, 0);
        ASSERT_GT(grandchild, 0);
        ASSERT_TRUE(waitUntil([&] { return recorder.chunks > 0; }));
    }

    const TempFolder folder;
    const QString childPath = folder.path(QStringLiteral("child"));
    const QString grandchildPath = folder.path(QStringLiteral("grandchild"));
    Recorder recorder;
    std::unique_ptr<taskLauncher> launcher = std::make_unique<taskLauncher>();
    pid_t child = 0;
    pid_t grandchild = 0;
};

TEST_F(Control, TerminateEndsTheWholeGroupAndReportsOnce)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    launcher->terminate();
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(launcher->terminationStatus(), -7654312);
    EXPECT_FALSE(launcher->isRunning());
    EXPECT_FALSE(hasChildren()) << "killed children are reaped before the end is reported";
    EXPECT_TRUE(waitUntil([&] { return isGone(child) && isGone(grandchild); }));
    launcher->terminate();
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(launcher->terminationStatus(), -7654312);
}

TEST_F(Control, AKillBeforeTheEndWasHandledCountsAsAKill)
{
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("touch"), childPath})), 0);
    siginfo_t info = {};
    ASSERT_EQ(waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
    launcher->terminate();
    EXPECT_EQ(launcher->terminationStatus(), taskLauncher::statusInterrupted);
    EXPECT_EQ(recorder.ends, 1);
}

TEST_F(Control, PauseStopsTheWholeGroupAndResumeContinuesIt)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    recorder.events.clear();
    launcher->suspend();
    EXPECT_TRUE(launcher->isSuspended());
    EXPECT_TRUE(launcher->isRunning());
    launcher->suspend();
    EXPECT_EQ(recorder.events.count(QStringLiteral("suspend")), 1);
    EXPECT_TRUE(waitUntil([&] { return processState(child) == 'T' && processState(grandchild) == 'T'; }));
    EXPECT_EQ(recorder.ends, 0);

    launcher->resume();
    EXPECT_FALSE(launcher->isSuspended());
    launcher->resume();
    EXPECT_EQ(recorder.events.count(QStringLiteral("resume")), 1);
    EXPECT_TRUE(waitUntil([&] { return processState(child) != 'T' && processState(grandchild) != 'T'; }));
    const int before = recorder.chunks;
    EXPECT_TRUE(waitUntil([&] { return recorder.chunks > before; }));
}

TEST_F(Control, ResumeOfARunningChainDoesNothing)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    launcher->resume();
    EXPECT_EQ(recorder.events.count(QStringLiteral("resume")), 0);
}

TEST_F(Control, TerminateOfAPausedChainResumesItFirst)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    launcher->suspend();
    recorder.events.clear();
    launcher->terminate();
    EXPECT_TEXTS(recorder.events, QStringList({QStringLiteral("resume"), QStringLiteral("end:-7654312")}));
    EXPECT_TRUE(waitUntil([&] { return isGone(child) && isGone(grandchild); }));
}

TEST_F(Control, NothingIsSuspendedAfterTheEnd)
{
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("exit"), QStringLiteral("0")})), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    launcher->suspend();
    EXPECT_FALSE(launcher->isSuspended());
    EXPECT_TEXTS(recorder.events, QStringList({QStringLiteral("end:0")}));
}

TEST_F(Control, APausedChainIsPausedInAllItsProcesses)
{
    const QString secondPath = folder.path(QStringLiteral("second"));
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("pid"), childPath, QStringLiteral("silence")}) +
                                                 QStringList(bar) +
                                                 fake({QStringLiteral("pid"), secondPath, QStringLiteral("silence")})),
              0);
    const pid_t first = waitForPid(childPath);
    const pid_t second = waitForPid(secondPath);
    launcher->suspend();
    EXPECT_TRUE(waitUntil([&] { return processState(first) == 'T' && processState(second) == 'T'; }));
    EXPECT_EQ(getpgid(first), first);
    EXPECT_EQ(getpgid(second), second);
    launcher->terminate();
    EXPECT_TRUE(isGone(first));
    EXPECT_TRUE(isGone(second));
}

TEST_F(Control, AChildThatStopsItselfCanStillBeKilled)
{
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("pid"), childPath, QStringLiteral("stop")})), 0);
    const pid_t stopped = waitForPid(childPath);
    ASSERT_TRUE(waitUntil([&] { return processState(stopped) == 'T'; }));
    launcher->terminate();
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_TRUE(isGone(stopped));
}

TEST_F(Control, DestroyingARunningLauncherKillsItsChainSilently)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    recorder.events.clear();
    launcher.reset();
    EXPECT_TEXTS(recorder.events, QStringList());
    EXPECT_TRUE(waitUntil([&] { return isGone(child) && isGone(grandchild); }));
}

TEST_F(Control, NotificationsReachTheLauncherWithThatIdentity)
{
    ASSERT_NO_FATAL_FAILURE(launchFamily());
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.post(fabPauseTasks, 0);
    EXPECT_FALSE(launcher->isSuspended()) << "a launcher that was never asked has no identity";
    const qint64 earliest = QDateTime::currentSecsSinceEpoch();
    const int uid = launcher->uid();
    EXPECT_GE(uid, earliest);
    EXPECT_LE(uid, QDateTime::currentSecsSinceEpoch());
    EXPECT_EQ(launcher->uid(), uid);

    center.post(fabPauseTasks, uid + 1);
    EXPECT_FALSE(launcher->isSuspended());
    center.post(fabPauseTasks, uid);
    EXPECT_TRUE(launcher->isSuspended());
    center.post(fabResumeTasks, uid);
    EXPECT_FALSE(launcher->isSuspended());
    center.post(fabKillTasks, uid);
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(launcher->terminationStatus(), taskLauncher::statusInterrupted);
}

TEST_F(Control, LaunchersWithOneIdentityReactBoth)
{
    Recorder secondRecorder;
    int uid = 0;
    // The second may change between the two requests; then new launchers are asked.
    std::unique_ptr<taskLauncher> other;
    do {
        launcher = std::make_unique<taskLauncher>();
        launcher->setDelegate(&recorder);
        other = std::make_unique<taskLauncher>();
        other->setDelegate(&secondRecorder);
        uid = launcher->uid();
    } while (other->uid() != uid);
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("silence")})), 0);
    ASSERT_EQ(other->launchTasksWithArguments(fake({QStringLiteral("silence")})), 0);
    NotificationCenter::defaultCenter().post(fabKillTasks, uid);
    EXPECT_EQ(recorder.ends, 1);
    EXPECT_EQ(secondRecorder.ends, 1);
}

TEST_F(Control, ReleaseInsideTheEndCallback)
{
    bool destroyed = false;
    QObject::connect(launcher.get(), &QObject::destroyed, [&] { destroyed = true; });
    recorder.onEnd = [&](taskLauncher* ending) {
        ending->terminate();
        launcher.release()->deleteLater();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("exit"), QStringLiteral("0")})), 0);
    EXPECT_TRUE(waitUntil([&] { return destroyed; }));
    EXPECT_EQ(recorder.ends, 1);
}

TEST_F(Control, DestructionInsideAnyCallback)
{
    recorder.onEnd = [&](taskLauncher*) {
        launcher.reset();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("exit"), QStringLiteral("0")})), 0);
    EXPECT_TRUE(waitUntil([&] { return !launcher; }));

    launcher = std::make_unique<taskLauncher>();
    launcher->setDelegate(&recorder);
    recorder.onOutput = [&](taskLauncher*) {
        launcher.reset();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("flood"), QStringLiteral("1000000")})), 0);
    EXPECT_TRUE(waitUntil([&] { return !launcher; }));
    EXPECT_EQ(recorder.ends, 1);

    launcher = std::make_unique<taskLauncher>();
    launcher->setDelegate(&recorder);
    recorder.onResume = [&](taskLauncher*) {
        launcher.reset();
    };
    recorder.onOutput = {};
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("silence")})), 0);
    launcher->suspend();
    launcher->terminate();
    EXPECT_FALSE(launcher);
    EXPECT_EQ(recorder.ends, 1);
}

TEST_F(Control, ALastChunkMayDestroyTheLauncherAfterTheProcessHasEnded)
{
    recorder.onOutput = [&](taskLauncher*) {
        launcher.reset();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("out"), QStringLiteral("x")})), 0);
    siginfo_t info = {};
    ASSERT_EQ(waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
    EXPECT_TRUE(waitUntil([&] { return !launcher; }));
    EXPECT_EQ(recorder.ends, 0);
}

TEST_F(Control, TheEndCallbackMayLaunchTheNextRun)
{
    std::unique_ptr<taskLauncher> next;
    Recorder nextRecorder;
    recorder.onEnd = [&](taskLauncher*) {
        next = std::make_unique<taskLauncher>();
        next->setDelegate(&nextRecorder);
        EXPECT_EQ(next->launchTasksWithArguments(fake({QStringLiteral("out"), QStringLiteral("next")})), 0);
        launcher.reset();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("exit"), QStringLiteral("0")})), 0);
    EXPECT_TRUE(waitUntil([&] { return nextRecorder.ends > 0; }));
    EXPECT_TEXT(nextRecorder.text, QStringLiteral("next"));
}

TEST_F(Control, AKillFromAnOutputCallbackStopsTheDelivery)
{
    recorder.onOutput = [](taskLauncher* sender) {
        sender->terminate();
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("flood"), QStringLiteral("1000000")})), 0);
    EXPECT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(recorder.chunks, 1);
    EXPECT_EQ(launcher->terminationStatus(), taskLauncher::statusInterrupted);
}

TEST_F(Control, AClosedGateHoldsOutputAndEndBackInOrder)
{
    auto gate = std::make_unique<ModalGateCloser>();
    ASSERT_EQ(launcher->launchTasksWithArguments(
                  fake({QStringLiteral("out"), QStringLiteral("text"), QStringLiteral("pid"), childPath})),
              0);
    const pid_t ended = waitForPid(childPath);
    ASSERT_TRUE(waitUntil([&] { return isGone(ended); }));
    EXPECT_FALSE(waitUntil([&] { return !recorder.events.isEmpty(); }, 50));
    gate.reset();
    EXPECT_TEXTS(recorder.events, QStringList()) << "nothing comes from inside the opening";
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXTS(recorder.events, QStringList({QStringLiteral("string:text"), QStringLiteral("end:0")}));
}

TEST_F(Control, AGateClosedInACallbackHoldsTheRestBack)
{
    std::unique_ptr<ModalGateCloser> gate;
    recorder.onOutput = [&](taskLauncher*) {
        if (!gate) {
            gate = std::make_unique<ModalGateCloser>();
        }
    };
    ASSERT_EQ(launcher->launchTasksWithArguments(
                  fake({QStringLiteral("out"), QStringLiteral("first"), QStringLiteral("err"), QStringLiteral("second"),
                        QStringLiteral("exit"), QStringLiteral("2")})),
              0);
    siginfo_t info = {};
    ASSERT_EQ(waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.chunks == 1; }));
    EXPECT_FALSE(waitUntil([&] { return recorder.events.size() > 1; }, 50));
    gate.reset();
    recorder.onOutput = {};
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_EQ(recorder.chunks, 2);
    EXPECT_EQ(launcher->terminationStatus(), 2);
}

TEST_F(Control, AClosedGateLetsTheChildBlockWithoutSpinning)
{
    const auto gate = std::make_unique<ModalGateCloser>();
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("flood"), QStringLiteral("1000000")})), 0);
    EXPECT_FALSE(waitUntil([&] { return recorder.chunks > 0; }, 50));
    launcher->terminate();
    EXPECT_EQ(recorder.ends, 1);
}

TEST_F(Control, AClosedGateHoldsControlNotificationsBack)
{
    ASSERT_EQ(launcher->launchTasksWithArguments(fake({QStringLiteral("silence")})), 0);
    const int uid = launcher->uid();
    auto gate = std::make_unique<ModalGateCloser>();
    NotificationCenter::defaultCenter().post(fabPauseTasks, uid);
    NotificationCenter::defaultCenter().post(fabKillTasks, uid);
    EXPECT_FALSE(waitUntil([&] { return !recorder.events.isEmpty(); }, 50));
    gate.reset();
    ASSERT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXTS(recorder.events,
                 QStringList({QStringLiteral("suspend"), QStringLiteral("resume"), QStringLiteral("end:-7654312")}));
}

// Runs in a process of its own, which the test kills.
[[noreturn]] void beParent(const QStringList& arguments)
{
    taskLauncher launcher;
    if (launcher.launchTasksWithArguments(arguments) != 0) {
        _exit(1);
    }
    for (;;) {
        pause();
    }
}

TEST_F(Control, AKilledProgramLeavesNoChildBehind)
{
    const pid_t parent = fork();
    ASSERT_GE(parent, 0);
    if (parent == 0) {
        beParent(fake({QStringLiteral("pid"), childPath, QStringLiteral("silence")}) + QStringList(bar) +
                 fake({QStringLiteral("pid"), grandchildPath, QStringLiteral("stop")}));
    }
    const pid_t first = waitForPid(childPath);
    const pid_t second = waitForPid(grandchildPath);
    ASSERT_GT(first, 0);
    ASSERT_GT(second, 0);
    kill(parent, SIGKILL);
    ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
    EXPECT_TRUE(waitUntil([&] { return isGone(first) && isGone(second); }));
}

} // namespace
