// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/toolrun.h"

#include "support/qtprinters.h"
#include "support/temphome.h"

#include "sys/transfer.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QStringList script(const char* text)
{
    return {QStringLiteral("/bin/sh"), QStringLiteral("-c"), QString::fromLatin1(text)};
}

TEST(ToolRun, KeepsTheStreamsApart)
{
    const ToolAnswer answer = ToolRun(script("echo out; echo error >&2")).finish();
    EXPECT_EQ(answer.output, QByteArray("out\n"));
    EXPECT_EQ(answer.errors, QByteArray("error\n"));
    EXPECT_TRUE(answer.failure.isNull());
    EXPECT_FALSE(answer.outOfTime);
}

TEST(ToolRun, DropsWhatIsBeyondTheLimits)
{
    ToolLimits limits;
    limits.outputBytes = 10;
    limits.errorBytes = 100000;
    const ToolAnswer answer =
        ToolRun(script("head -c 3000000 /dev/zero; head -c 3000000 /dev/zero >&2; echo end >&2"), limits).finish();
    EXPECT_EQ(answer.output.size(), 10);
    EXPECT_EQ(answer.errors.size(), 100000);
    EXPECT_FALSE(answer.outOfTime);
}

TEST(ToolRun, EndsAToolThatTakesTooLong)
{
    ToolLimits limits;
    limits.seconds = 1;
    const ToolAnswer answer = ToolRun(script("echo $$; exec sleep 600"), limits).finish();
    EXPECT_TRUE(answer.outOfTime);
    const int pid = answer.output.trimmed().toInt();
    ASSERT_GT(pid, 1);
    EXPECT_EQ(::kill(pid, 0), -1);
}

TEST(ToolRun, DoesNotWaitForWhatTheToolLeavesRunning)
{
    const ToolAnswer answer = ToolRun(script("sleep 600 & echo $!")).finish();
    EXPECT_FALSE(answer.outOfTime);
    EXPECT_GT(answer.output.trimmed().toInt(), 1);
}

TEST(ToolRun, TellsWhyAProgramCannotRun)
{
    const ToolAnswer answer = ToolRun(QStringList{QStringLiteral("/nonexistent/tool")}).finish();
    EXPECT_EQ(answer.failure, missingFileText());
    EXPECT_FALSE(ToolRun(QStringList()).finish().failure.isNull());
}

TEST(ToolRun, WorkInACopyOfTheProgramHasBothStreams)
{
    int changed = 0;
    const ToolAnswer answer = ToolRun([&changed](int output, int errors) {
                                  changed = 1;
                                  const std::string much(300000, 'x');
                                  return writeAll(output, "out") && writeAll(errors, much) ? 0 : 1;
                              }).finish();
    EXPECT_TRUE(answer.succeeded);
    EXPECT_EQ(answer.output, QByteArray("out"));
    EXPECT_EQ(answer.errors.size(), 300000);
    EXPECT_EQ(changed, 0);
}

TEST(ToolRun, WorkThatFailsOrBreaksHasNotSucceeded)
{
    EXPECT_TRUE(ToolRun([](int, int) { return 0; }).finish().succeeded);
    EXPECT_FALSE(ToolRun([](int, int) { return 1; }).finish().succeeded);
    EXPECT_FALSE(ToolRun([](int, int) -> int { throw std::runtime_error("broken"); }).finish().succeeded);
    const ToolAnswer killed = ToolRun([](int, int) { return ::raise(SIGKILL); }).finish();
    EXPECT_FALSE(killed.succeeded);
    EXPECT_FALSE(killed.outOfTime);
    EXPECT_TRUE(killed.failure.isNull());
}

TEST(ToolRun, EndsWorkThatTakesTooLong)
{
    ToolLimits limits;
    limits.seconds = 1;
    const ToolAnswer answer = ToolRun(
                                  [](int output, int) {
                                      const pid_t self = ::getpid();
                                      (void)writeAll(output, std::to_string(self));
                                      return ::pause();
                                  },
                                  limits)
                                  .finish();
    EXPECT_TRUE(answer.outOfTime);
    EXPECT_FALSE(answer.succeeded);
    const int pid = answer.output.toInt();
    ASSERT_GT(pid, 1);
    EXPECT_EQ(::kill(pid, 0), -1);
}

} // namespace
