// SPDX-License-Identifier: GPL-3.0-or-later
// What is left when the tool or the encoder is stopped from outside.
#include "sys/descriptor.h"
#include "sys/transfer.h"
#include "tools/toolrun.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
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
};

// User and system ticks of a process; 0 when there is none.
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

// What the child runs. Between its start and its own program it is a copy of the tool, with the tool's arguments.
std::string commandOf(pid_t pid)
{
    return test::fileContents("/proc/" + std::to_string(pid) + "/cmdline");
}

// How far a run has come when it is disturbed.
struct Moment {
    const char* name;
    std::function<bool(const RunningTool&)> reached;
};

bool encodes(const RunningTool& tool, long ticks)
{
    return tool.child() != 0 && processorTime(tool.child()) >= ticks;
}

const Moment moments[] = {
    {"AtOnce",
     [](const RunningTool&) {
         return true;
     }},
    {"WithTheToolStarted",
     [](const RunningTool& tool) {
         return test::contains(commandOf(tool.pid()), "veryslow");
     }},
    {"WithAChild",
     [](const RunningTool& tool) {
         return tool.child() != 0;
     }},
    {"WithTheEncoderStarted",
     [](const RunningTool& tool) {
         return test::contains(commandOf(tool.child()), "-nostdin");
     }},
    {"WithTheEncoderAtWork",
     [](const RunningTool& tool) {
         return encodes(tool, 1);
     }},
    {"AfterTheFirstPictures",
     [](const RunningTool& tool) {
         return encodes(tool, 12);
     }},
    {"InTheMiddle",
     [](const RunningTool& tool) {
         return encodes(tool, 40);
     }},
};

class StoppedFfmpegAt : public StoppedFfmpeg, public testing::WithParamInterface<Moment>
{
};

class StoppedEncoderAt : public StoppedFfmpegAt
{
};

std::string momentName(const testing::TestParamInfo<Moment>& info)
{
    return info.param.name;
}

TEST_P(StoppedFfmpegAt, KilledToolLeavesNothing)
{
    test::writeFile(output(), "old");
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return GetParam().reached(tool); }));
    const pid_t child = tool.child();
    kill(tool.pid(), SIGKILL);
    EXPECT_TRUE(tool.wait().bySignal);
    EXPECT_TRUE(child == 0 || becomes([&] { return !isAlive(child); }));
    EXPECT_EQ(entriesOf(folderPath()), Words{"out.mov"});
    EXPECT_EQ(test::fileContents(output()), "old");
}

TEST_P(StoppedEncoderAt, KilledEncoderLeavesNothing)
{
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return GetParam().reached(tool); }));
    kill(tool.child(), SIGKILL);
    const test::ToolEnd end = tool.wait();
    EXPECT_FALSE(end.bySignal);
    EXPECT_EQ(end.code, 128 + SIGKILL);
    EXPECT_TRUE(entriesOf(folderPath()).empty());
}

INSTANTIATE_TEST_SUITE_P(Moments, StoppedFfmpegAt, testing::ValuesIn(moments), momentName);
INSTANTIATE_TEST_SUITE_P(Moments, StoppedEncoderAt, testing::ValuesIn(moments + 2, std::end(moments)), momentName);

TEST_F(StoppedFfmpeg, EncoderBearsTheNameOfTheTool)
{
    RunningTool tool(arguments(), {});
    EXPECT_TRUE(becomes([&] { return test::contains(commandOf(tool.child()), "-nostdin"); }));
    EXPECT_TRUE(commandOf(tool.child()).starts_with(test::toolPath() + '\0'));
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

// Whether every thread of the process is stopped, so that it takes no processor time.
bool isStopped(pid_t pid)
{
    const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
    const Words threads = entriesOf(tasks);
    return !threads.empty() && std::ranges::all_of(threads, [&](const std::string& thread) {
        return test::contains(test::fileContents(tasks + '/' + thread + "/stat"), ") T ");
    });
}

TEST_F(StoppedFfmpeg, PausesWithItsGroup)
{
    RunningTool tool(arguments(), {});
    ASSERT_TRUE(becomes([&] { return tool.child() != 0 && processorTime(tool.child()) > 5; }));
    const pid_t child = tool.child();
    tool.signalGroup(SIGSTOP);
    ASSERT_TRUE(becomes([&] { return isStopped(child) && isStopped(tool.pid()); }));
    const long before = processorTime(child);
    tool.signalGroup(SIGCONT);
    EXPECT_TRUE(becomes([&] { return processorTime(child) > before; }));
}

} // namespace

} // namespace tavrix
