// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/spawn.h"

#include "sys/childend.h"
#include "sys/transfer.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr std::uint64_t muchText = 1 << 20;

SpawnRequest shell(const std::string& command)
{
    SpawnRequest request;
    request.program = "/bin/sh";
    request.arguments = {"sh", "-c", command};
    return request;
}

// What the child writes on its standard output until it ends.
std::string outputOf(SpawnRequest request)
{
    Pipe pipe = makePipe(PipeReader::Child);
    request.output = pipe.writeEnd.get();
    const Result<pid_t> child = spawn(request);
    pipe.writeEnd.reset();
    if (!child) {
        return child.reason();
    }
    std::string text = readAll<std::string>(pipe.readEnd.get(), muchText).value_or("unreadable");
    EXPECT_EQ(waitpid(*child, nullptr, 0), *child);
    return text;
}

// Runs `work` in a process of its own, which changes what is left to children; true when it says so there.
bool holdsInAProcess(const std::function<bool()>& work)
{
    const pid_t pid = fork();
    if (pid == 0) {
        _exit(work() ? 0 : 1);
    }
    int status = -1;
    return pid > 0 && waitpid(pid, &status, 0) == pid && status == 0;
}

// The system refuses this call from now on, for one value of the first argument or for all (-1).
bool refuse(long call, int error, int argument = -1)
{
    const bool all = argument < 0;
    std::array<sock_filter, 6> steps = {
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 3),
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
        sock_filter BPF_JUMP(BPF_JMP | (all ? BPF_JGE : BPF_JEQ) | BPF_K, static_cast<unsigned>(all ? 0 : argument), 0,
                             1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {steps.size(), steps.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST(Spawn, TheProgramGetsItsNameArgumentsAndStreams)
{
    EXPECT_EQ(outputOf(shell("echo \"$0 $1\"; cat")), "sh \n");
    SpawnRequest request = shell("echo \"$0 $1\"");
    request.arguments.insert(request.arguments.end(), {"name", "a'\n b"});
    EXPECT_EQ(outputOf(request), "name a'\n b\n");
    Pipe input = makePipe(PipeReader::Child);
    ASSERT_TRUE(writeAll(input.writeEnd.get(), "from a pipe"));
    input.writeEnd.reset();
    SpawnRequest reader = shell("cat");
    reader.input = input.readEnd.get();
    EXPECT_EQ(outputOf(reader), "from a pipe");
}

TEST(Spawn, VariablesAreSetAndRemoved)
{
    setenv("TAVRIX_A", "a", 1);
    setenv("TAVRIX_B", "b", 1);
    setenv("TAVRIX_AB", "ab", 1);
    SpawnRequest request = shell("echo $TAVRIX_A-$TAVRIX_B-$TAVRIX_AB");
    request.environment = {{"TAVRIX_A", "new = one"}};
    request.removedVariables = {"TAVRIX_B"};
    EXPECT_EQ(outputOf(request), "new = one--ab\n");
    for (const char* name : {"TAVRIX_A", "TAVRIX_B", "TAVRIX_AB"}) {
        unsetenv(name);
    }
}

TEST(Spawn, WorksInTheFolderGiven)
{
    SpawnRequest request = shell("pwd");
    request.workingFolder = "/usr";
    EXPECT_EQ(outputOf(request), "/usr\n");
    request.workingFolder = "/no such folder";
    EXPECT_EQ(spawn(request).reason(), "No such file or directory");
}

TEST(Spawn, LeadsAGroupOfItsOwnWhenAsked)
{
    const std::string groupIsOwn = "test $(cut -d' ' -f5 /proc/$$/stat) = $$ && echo own || echo inherited";
    SpawnRequest request = shell(groupIsOwn);
    EXPECT_EQ(outputOf(request), "inherited\n");
    request.ownGroup = true;
    EXPECT_EQ(outputOf(request), "own\n");
}

TEST(Spawn, SaysWhyAndLeavesNoProcess)
{
    SpawnRequest request;
    request.program = "/no such program";
    request.arguments = {"x"};
    EXPECT_EQ(spawn(request).reason(), "No such file or directory");
    request.program = "/etc/passwd";
    EXPECT_EQ(spawn(request).reason(), "Permission denied");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(Spawn, RefusesTextsThatTheSystemWouldCut)
{
    const std::string cut("a\0b", 3);
    std::array<SpawnRequest, 4> requests = {shell("true"), shell(cut), shell("true"), shell("true")};
    requests[0].program = cut;
    requests[2].workingFolder = cut;
    requests[3].environment = {{"A", cut}};
    for (const SpawnRequest& request : requests) {
        EXPECT_EQ(spawn(request).reason(), "Invalid argument");
    }
}

TEST(Spawn, TheChildStartsWithDefaultSignalsAndAnEmptyMask)
{
    EXPECT_TRUE(holdsInAProcess([] {
        for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGUSR1, SIGRTMIN}) {
            std::signal(number, SIG_IGN);
        }
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        // Asked by the child itself: a shell blocks signals for a moment while it forks.
        SpawnRequest request;
        request.program = "/bin/grep";
        request.arguments = {"grep", "-E", "Sig(Blk|Ign)", "/proc/self/status"};
        const std::string told = outputOf(request);
        sigset_t now;
        sigprocmask(SIG_SETMASK, nullptr, &now);
        return told == "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n" && sigismember(&now, SIGUSR1) == 1;
    }));
}

TEST(Spawn, AnIgnoredChildSignalDoesNotLoseTheStatus)
{
    EXPECT_TRUE(holdsInAProcess([] {
        std::signal(SIGCHLD, SIG_IGN);
        const auto end = runToEnd(shell("exit 8"), std::chrono::minutes(1));
        return end && *end == ChildEnd{false, 8};
    }));
}

// Numbers of the descriptors that are open in a child beside the standard ones.
std::string foreignDescriptors(SpawnRequest request)
{
    request.arguments.back() = "for n in $(seq 3 64); do test -e /proc/$$/fd/$n && echo $n; done";
    return outputOf(request);
}

TEST(Spawn, OnlyNamedDescriptorsAreOpenInTheChild)
{
    const Descriptor careless(dup(STDERR_FILENO));
    ASSERT_EQ(fcntl(careless.get(), F_SETFD, 0), 0);
    const Descriptor wanted(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 40));
    SpawnRequest request = shell("");
    EXPECT_EQ(foreignDescriptors(request), "");
    request.inheritedDescriptors = {wanted.get()};
    EXPECT_EQ(foreignDescriptors(request), std::to_string(wanted.get()) + "\n");
    request.inheritedDescriptors = {-1};
    EXPECT_EQ(foreignDescriptors(request), "Bad file descriptor");
}

TEST(Spawn, ForeignDescriptorsStayOutWhereTheKernelCannotCloseARange)
{
    EXPECT_TRUE(holdsInAProcess([] {
        const Descriptor careless(dup(STDERR_FILENO));
        return fcntl(careless.get(), F_SETFD, 0) == 0 && refuse(SYS_close_range, ENOSYS) &&
               foreignDescriptors(shell("")).empty();
    }));
}

TEST(Spawn, AChildThatNobodyWouldKillIsNotStarted)
{
    EXPECT_TRUE(holdsInAProcess([] {
        return refuse(SYS_prctl, EPERM, PR_SET_PDEATHSIG) && spawn(shell("true")).reason() == "Operation not permitted";
    }));
}

TEST(Spawn, TheChildDiesWithItsParent)
{
    Pipe pipe = makePipe(PipeReader::Child);
    EXPECT_TRUE(holdsInAProcess([&pipe] {
        SpawnRequest request;
        request.program = "/bin/sleep";
        request.arguments = {"sleep", "1000"};
        request.output = pipe.writeEnd.get();
        return spawn(request).hasValue();
    }));
    pipe.writeEnd.reset();
    EXPECT_EQ(readAll<std::string>(pipe.readEnd.get(), muchText).value_or("unreadable"), "");
}

TEST(SpawnCopy, LeadsAGroupOfItsOwnAndAnswersWithItsStatus)
{
    const auto started = spawnCopy([] { return getpgrp() == getpid() ? 7 : 1; });
    ASSERT_TRUE(started) << started.reason();
    int status = 0;
    EXPECT_EQ(waitpid(*started, &status, 0), *started);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
}

TEST(SpawnCopy, DiesWithItsParent)
{
    Pipe pipe = makePipe(PipeReader::Child);
    EXPECT_TRUE(holdsInAProcess([] { return spawnCopy([] { return pause(); }).hasValue(); }));
    pipe.writeEnd.reset();
    EXPECT_EQ(readAll<std::string>(pipe.readEnd.get(), muchText).value_or("unreadable"), "");
}

class ExitDescriptor : public testing::TestWithParam<ExitWatch>
{
};

TEST_P(ExitDescriptor, BecomesReadableAtTheEnd)
{
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        for (;;) {
            pause();
        }
    }
    const Descriptor fd = openExitDescriptor(pid, GetParam());
    ASSERT_TRUE(fd.isOpen());
    pollfd watched = {fd.get(), POLLIN, 0};
    EXPECT_EQ(poll(&watched, 1, 0), 0);
    kill(pid, SIGKILL);
    EXPECT_EQ(poll(&watched, 1, 10000), 1);
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, WNOHANG), pid);
}

INSTANTIATE_TEST_SUITE_P(Ways, ExitDescriptor, testing::Values(ExitWatch::Kernel, ExitWatch::Thread),
                         [](const auto& row) { return row.param == ExitWatch::Kernel ? "Kernel" : "Thread"; });

TEST(RunToEnd, TellsHowTheChildHasEnded)
{
    constexpr std::chrono::minutes limit(5);
    EXPECT_EQ(*runToEnd(shell("exit 3"), limit), (ChildEnd{false, 3}));
    EXPECT_EQ(*runToEnd(shell("kill -TERM $$"), limit), (ChildEnd{true, SIGTERM}));
    SpawnRequest missing = shell("");
    missing.program = "/no such shell";
    EXPECT_EQ(runToEnd(missing, limit).reason(), "No such file or directory");
}

TEST(RunToEnd, KillsTheWholeGroupWhenTheTimeIsOver)
{
    Pipe pipe = makePipe(PipeReader::Child);
    SpawnRequest request = shell("sleep 1000 & sleep 1000");
    request.output = pipe.writeEnd.get();
    const Result<ChildEnd> end = runToEnd(request, std::chrono::milliseconds(50));
    EXPECT_EQ(end.reason(), "not ended after 50 ms");
    pipe.writeEnd.reset();
    EXPECT_EQ(readAll<std::string>(pipe.readEnd.get(), muchText).value_or("unreadable"), "");
}

} // namespace

} // namespace tavrix
