// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/instancelock.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>

using namespace tavrix;
using namespace tavrix::test;
using Result = InstanceLock::Result;

TEST(InstanceLock, IsHeldByOneAtATime)
{
    const TempFolder folder;
    const QString place = folder.path(QStringLiteral("made/when missing"));
    auto first = std::make_unique<InstanceLock>();
    InstanceLock second;
    EXPECT_EQ(first->take(place), Result::Taken);
    EXPECT_EQ(second.take(place), Result::HeldByAnother);
    EXPECT_EQ(second.take(place), Result::HeldByAnother);
    first.reset();
    EXPECT_EQ(second.take(place), Result::Taken);
}

TEST(InstanceLock, OtherFoldersAreOtherLocks)
{
    const TempFolder folder;
    InstanceLock first;
    InstanceLock second;
    EXPECT_EQ(first.take(folder.path(QStringLiteral("a"))), Result::Taken);
    EXPECT_EQ(second.take(folder.path(QStringLiteral("b"))), Result::Taken);
}

TEST(InstanceLock, IsFreedWithItsProcessHoweverItEnds)
{
    const TempFolder folder;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        InstanceLock lock;
        const char taken = lock.take(folder.path()) == Result::Taken ? '1' : '0';
        if (::write(ready[1], &taken, 1) == 1) {
            ::pause();
        }
        ::_exit(0);
    }
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, '1');
    InstanceLock lock;
    EXPECT_EQ(lock.take(folder.path()), Result::HeldByAnother);
    ::kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(lock.take(folder.path()), Result::Taken);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(InstanceLock, LinkInItsPlaceIsNotFollowed)
{
    const TempFolder folder;
    const QString target = folder.makeFile(QStringLiteral("target"), "kept");
    ASSERT_EQ(::symlink(qPrintable(target), qPrintable(folder.path(QStringLiteral("instance.lock")))), 0);
    InstanceLock lock;
    EXPECT_EQ(lock.take(folder.path()), Result::Unavailable);
    EXPECT_EQ(readBytes(target), QByteArray("kept"));
}

TEST(InstanceLock, FolderThatCannotBeMadeIsUnavailable)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("file"));
    InstanceLock lock;
    EXPECT_EQ(lock.take(file + QStringLiteral("/below")), Result::Unavailable);
}
