// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/silencewatch.h"

#include "processsupport.h"
#include "support/waituntil.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

TEST(ChildActivity, OfAChildThatWritesGrows)
{
    taskLauncher launcher;
    ASSERT_EQ(
        launcher.launchTasksWithArguments(fake({QStringLiteral("progress"), QStringLiteral("0"), QStringLiteral("1")})),
        0);
    quint64 before = 0;
    EXPECT_TRUE(waitUntil([&] {
        before = launcher.activity().bytes;
        return before > 0;
    }));
    EXPECT_TRUE(waitUntil([&] { return launcher.activity().bytes > before; }));
    launcher.terminate();
}

TEST(ChildActivity, OfASilentChildStays)
{
    const TempFolder folder;
    taskLauncher launcher;
    const QString pid = folder.path(QStringLiteral("pid"));
    ASSERT_EQ(launcher.launchTasksWithArguments(fake({QStringLiteral("pid"), pid, QStringLiteral("silence")})), 0);
    const pid_t child = waitForPid(pid);
    ASSERT_TRUE(waitUntil([&] { return processState(child) == 'S'; }));
    const ChildActivity before = launcher.activity();
    EXPECT_GT(before.bytes, 0U);
    EXPECT_EQ(launcher.activity(), before);
    launcher.terminate();
}

TEST(ChildActivity, OfNoGroupIsNone)
{
    EXPECT_EQ(activityOfGroups({}), ChildActivity());
    EXPECT_EQ(taskLauncher().activity(), ChildActivity());
}

TEST(SilenceWatch, AsksWhatTheChildDoesOnlyWhenItSaysNothing)
{
    SilenceWatch watch;
    watch.begin();
    int asked = 0;
    const auto activity = [&asked] {
        ++asked;
        return ChildActivity();
    };
    watch.heard();
    EXPECT_FALSE(watch.pass(1000, 2000, activity));
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(watch.pass(1000, 2000, activity));
    EXPECT_TRUE(watch.pass(1000, 2000, activity));
    EXPECT_EQ(asked, 2);
}

} // namespace
