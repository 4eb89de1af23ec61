// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/childprocess.h"
#include "process/tasklauncher.h"
#include "processsupport.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include <csignal>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

TEST(ChildProcess, StartsWithDefaultSignalsAndAnEmptyMask)
{
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const auto previous = std::signal(SIGPIPE, SIG_IGN);
    Recorder recorder;
    taskLauncher launcher;
    launcher.setDelegate(&recorder);
    EXPECT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("signals")})), 0);
    std::signal(SIGPIPE, previous);
    sigset_t now;
    sigprocmask(SIG_SETMASK, &before, &now);
    EXPECT_EQ(sigismember(&now, SIGUSR1), 1) << "the program's own mask is untouched";
    EXPECT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    EXPECT_TEXT(recorder.text, QStringLiteral("default"));
}

TEST(ChildProcess, AnIgnoredChildSignalDoesNotLoseTheStatus)
{
    const auto previous = std::signal(SIGCHLD, SIG_IGN);
    Recorder recorder;
    taskLauncher launcher;
    launcher.setDelegate(&recorder);
    EXPECT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("exit"), QStringLiteral("8")})), 0);
    EXPECT_TRUE(waitUntil([&] { return recorder.ends > 0; }));
    std::signal(SIGCHLD, previous);
    EXPECT_EQ(launcher.terminationStatus(), 8);
}

TEST(ChildProcess, RefusesArgumentsThatTheSystemWouldCut)
{
    ChildSetup setup;
    setup.program = fakeChild();
    setup.arguments = {QStringLiteral("out"), QString(QStringLiteral("a")) + QChar(u'\0') + QStringLiteral("b")};
    const auto child = ChildProcess::start(setup);
    EXPECT_FALSE(child);
    EXPECT_FALSE(child.reason().isEmpty());
}

} // namespace
