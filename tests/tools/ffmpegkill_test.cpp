// What is left when the tool or the encoder is stopped from outside.
#include "sys/descriptor.h"
#include "sys/transfer.h"
#include "tools/toolrun.h"

#include <QElapsedTimer>
#include <QThread>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavrix
{

namespace
{

using test::clip;
using test::entriesOf;
using test::isAlive;
using test::RunningTool;
using test::Words;

constexpr int patienceMs = 20000;

template <class Condition> bool becomes(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > patienceMs) {
            return false;
        }
        QThread::usleep(500);
    }
    return true;
}

class StoppedFfmpeg : public test::ToolTest
{
protected:
    // A slow encode, so that every moment below falls into it.
    Words arguments() const
    {
        return {"-v", "1", "-i", clip("long"), "-vcodec", "libx264", "-preset", "veryslow", "-an", "-y", output()};
    }
    std::string output() const { return name("out.mov"); }
    static void waitUntil(const QElapsedTimer& since, int us)
    {
        const auto left = us - since.nsecsElapsed() / 1000;
        if (left > 0) {
            QThread::usleep(static_cast<unsigned long>(left));
        }
    }
};

TEST_F(StoppedFfmpeg, KilledToolLeavesNothingAtAnyMoment)
{
    test::writeFile(output(), "old");
    std::minstd_rand random(20); // fixed, so that a failure comes again
    for (int round = 0; round < 20; ++round) {
        RunningTool tool(arguments(), {});
        QElapsedTimer timer;
        timer.start();
        waitUntil(timer, static_cast<int>(random() % 400000));
        const pid_t child = tool.child();
        kill(tool.pid(), SIGKILL);
        EXPECT_TRUE(tool.wait().bySignal);
        EXPECT_TRUE(child == 0 || becomes([&] { return !isAlive(child); }));
        EXPECT_EQ(entriesOf(folderPath()), Words{"out.mov"});
    }
    EXPECT_EQ(test::fileContents(output()), "old");
}

TEST_F(StoppedFfmpeg, KilledEncoderLeavesNothingAtAnyMoment)
{
    std::minstd_rand random(21);
    for (int round = 0; round < 10; ++round) {
        RunningTool tool(arguments(), {});
        ASSERT_TRUE(becomes([&] { return tool.child() != 0; }));
        QElapsedTimer timer;
        timer.start();
        waitUntil(timer, static_cast<int>(random() % 400000));
        kill(tool.child(), SIGKILL);
        const test::ToolEnd end = tool.wait();
        EXPECT_FALSE(end.bySignal);
        EXPECT_EQ(end.code, 128 + SIGKILL);
        EXPECT_TRUE(entriesOf(folderPath()).empty());
    }
}

TEST_F(StoppedFfmpeg, EncoderBearsTheNameOfTheTool)
{
    RunningTool tool(arguments(), {});
    const auto command = [&] {
        return test::fileContents("/proc/" + std::to_string(tool.child()) + "/cmdline");
    };
    // Between its start and its own program the child is a copy of the tool, with the tool's arguments.
    EXPECT_TRUE(becomes([&] { return command().find("-nostdin") != std::string::npos; }));
    EXPECT_TRUE(command().starts_with(test::toolPath() + '\0'));
}

TEST_F(StoppedFfmpeg, KilledGroupLeavesNothing)
{
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return tool.child() != 0; }));
    const pid_t child = tool.child();
    tool.signalGroup(SIGKILL);
    EXPECT_TRUE(tool.wait().bySignal);
    EXPECT_TRUE(becomes([&] { return !isAlive(child); }));
    EXPECT_TRUE(entriesOf(folderPath()).empty());
}

TEST_F(StoppedFfmpeg, EndsWithTheEncoderWhenAskedTo)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        RunningTool tool(arguments(), {});
        ASSERT_TRUE(becomes([&] { return tool.child() != 0; }));
        const pid_t child = tool.child();
        kill(tool.pid(), signal);
        const test::ToolEnd end = tool.wait();
        EXPECT_TRUE(end.bySignal);
        EXPECT_EQ(end.code, signal);
        EXPECT_FALSE(isAlive(child));
        EXPECT_TRUE(entriesOf(folderPath()).empty());
    }
}

TEST_F(StoppedFfmpeg, EndsWhenAskedToAlsoUnderACallerThatBlocksSignals)
{
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    sigset_t before;
    ASSERT_EQ(sigprocmask(SIG_BLOCK, &term, &before), 0);
    RunningTool tool(arguments(), {});
    ASSERT_EQ(sigprocmask(SIG_SETMASK, &before, nullptr), 0);
    ASSERT_TRUE(becomes([&] { return tool.child() != 0; }));
    kill(tool.pid(), SIGTERM);
    ASSERT_TRUE(becomes([&] { return tool.hasEnded(); }));
    EXPECT_EQ(tool.wait().code, SIGTERM);
    EXPECT_TRUE(entriesOf(folderPath()).empty());
}

TEST_F(StoppedFfmpeg, EndsWhenAskedToAlsoWhenNobodyReadsOn)
{
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    ASSERT_GT(fcntl(writing.get(), F_SETPIPE_SZ, 4096), 0);
    RunningTool::Options options;
    options.errorStream = writing.get();
    Words words = arguments();
    words.insert(words.begin(), {"-fdebug", "ts"});
    RunningTool tool(words, options);
    const auto isFull = [&] {
        pollfd room = {writing.get(), POLLOUT, 0};
        return poll(&room, 1, 0) == 0;
    };
    ASSERT_TRUE(becomes(isFull));
    kill(tool.pid(), SIGTERM);
    ASSERT_TRUE(becomes([&] { return tool.hasEnded(); }));
    EXPECT_EQ(tool.wait().code, SIGTERM);
    EXPECT_TRUE(entriesOf(folderPath()).empty());
}

TEST_F(StoppedFfmpeg, EndsByTheInterruptKeyWithoutPublishing)
{
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return tool.child() != 0; }));
    tool.signalGroup(SIGINT);
    EXPECT_TRUE(tool.wait().bySignal);
    EXPECT_TRUE(entriesOf(folderPath()).empty());
}

// User and system ticks of a process.
long processorTime(pid_t pid)
{
    const std::string text = test::fileContents("/proc/" + std::to_string(pid) + "/stat");
    std::istringstream fields(text.substr(std::min(text.rfind(") ") + 2, text.size())));
    std::string skipped;
    for (int i = 0; i < 11; ++i) {
        fields >> skipped;
    }
    long user = 0;
    long system = 0;
    fields >> user >> system;
    return user + system;
}

bool isStopped(pid_t pid)
{
    const std::string text = test::fileContents("/proc/" + std::to_string(pid) + "/stat");
    return text.find(") T ") != std::string::npos;
}

TEST_F(StoppedFfmpeg, PausesWithItsGroup)
{
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return tool.child() != 0 && processorTime(tool.child()) > 5; }));
    const pid_t child = tool.child();
    tool.signalGroup(SIGSTOP);
    ASSERT_TRUE(becomes([&] { return isStopped(child) && isStopped(tool.pid()); }));
    const long before = processorTime(child);
    QThread::msleep(300);
    EXPECT_EQ(processorTime(child), before);
    tool.signalGroup(SIGCONT);
    EXPECT_TRUE(becomes([&] { return processorTime(child) > before; }));
}

} // namespace

} // namespace tavrix
