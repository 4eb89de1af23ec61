// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

bool isOpenInTheSystem(int fd)
{
    return fcntl(fd, F_GETFD) >= 0;
}

Descriptor nullDevice()
{
    return openFile("/dev/null", O_WRONLY);
}

TEST(Descriptor, ClosesWhatItOwns)
{
    int fd = -1;
    {
        const Descriptor owner = nullDevice();
        ASSERT_TRUE(owner.isOpen());
        fd = owner.get();
        EXPECT_TRUE(isOpenInTheSystem(fd));
    }
    EXPECT_FALSE(isOpenInTheSystem(fd));
}

TEST(Descriptor, HandsOverWithoutClosing)
{
    Descriptor first = nullDevice();
    const int fd = first.get();
    Descriptor second = std::move(first);
    EXPECT_EQ(second.get(), fd);
    Descriptor third = nullDevice();
    const int replaced = third.get();
    third = std::move(second);
    EXPECT_FALSE(isOpenInTheSystem(replaced));
    EXPECT_EQ(third.get(), fd);
    EXPECT_EQ(third.release(), fd);
    EXPECT_FALSE(third.isOpen());
    EXPECT_TRUE(isOpenInTheSystem(fd));
    third.reset(fd);
    EXPECT_TRUE(third.close());
    EXPECT_FALSE(isOpenInTheSystem(fd));
    EXPECT_TRUE(third.close()) << "nothing open is a success";
}

TEST(Descriptor, ClosingKeepsTheReasonOfAFailure)
{
    Descriptor owner = nullDevice();
    errno = ENOSPC;
    owner.reset();
    EXPECT_EQ(errno, ENOSPC);
    Descriptor stale(owner.get());
    stale.reset(999999);
    EXPECT_FALSE(stale.close());
    EXPECT_EQ(errno, EBADF);
}

TEST(OpenFile, IsCloseOnExecAndTellsWhyNot)
{
    EXPECT_NE(fcntl(nullDevice().get(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_FALSE(openFile("/no such file", O_RDONLY).isOpen());
    EXPECT_EQ(errno, ENOENT);
}

TEST(OpenFile, NamesAreTakenInTheFolder)
{
    const Descriptor folder = openFile("/dev", O_RDONLY | O_DIRECTORY);
    EXPECT_TRUE(openFileAt(folder.get(), "null", O_RDONLY).isOpen());
    EXPECT_FALSE(openFileAt(folder.get(), "no such device", O_RDONLY).isOpen());
}

TEST(AboveStandardStreams, MovesANewDescriptorOutOfTheirRange)
{
    EXPECT_FALSE(aboveStandardStreams(Descriptor()).isOpen());
    const Descriptor kept = openFile("/dev/null", O_RDONLY);
    Descriptor input(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    ASSERT_EQ(dup2(kept.get(), STDIN_FILENO), STDIN_FILENO);
    const Descriptor high = aboveStandardStreams(Descriptor(STDIN_FILENO));
    EXPECT_GT(high.get(), STDERR_FILENO);
    EXPECT_NE(fcntl(high.get(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_FALSE(isOpenInTheSystem(STDIN_FILENO));
    if (input.isOpen()) {
        ASSERT_EQ(dup2(input.get(), STDIN_FILENO), STDIN_FILENO);
    }
}

TEST(MakePipe, OnlyTheEndThatThisProgramReadsDoesNotBlock)
{
    const Pipe forChild = makePipe(PipeReader::Child);
    const Pipe forParent = makePipe(PipeReader::Parent);
    ASSERT_TRUE(forChild.isOpen() && forParent.isOpen());
    EXPECT_EQ(fcntl(forChild.readEnd.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(fcntl(forParent.readEnd.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(fcntl(forParent.writeEnd.get(), F_GETFL) & O_NONBLOCK, 0);
    for (const Descriptor* end : {&forChild.readEnd, &forChild.writeEnd, &forParent.readEnd, &forParent.writeEnd}) {
        EXPECT_NE(fcntl(end->get(), F_GETFD) & FD_CLOEXEC, 0);
        EXPECT_GT(end->get(), STDERR_FILENO);
    }
}

} // namespace

} // namespace tavrix
