#include "tools/common/descriptors.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace tavrix
{

namespace
{

TEST(WriteAll, WaitsForRoomInAPipeThatDoesNotBlock)
{
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
    ASSERT_EQ(fcntl(ends[0], F_SETFL, 0), 0);
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const std::string sent(1'000'000, 'x');
    std::string received;
    std::thread reader([&] {
        std::array<char, 4096> buffer = {};
        for (ssize_t count = 0; (count = read(reading.get(), buffer.data(), buffer.size())) > 0;) {
            received.append(buffer.data(), static_cast<std::size_t>(count));
        }
    });
    EXPECT_TRUE(writeAll(writing.get(), sent));
    writing.reset();
    reader.join();
    EXPECT_EQ(received, sent);
}

TEST(WriteUnless, GivesUpAtAFullPipeWhenToldTo)
{
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    ASSERT_TRUE(writeUnless([] { return false; }, writing.get(), "x"));
    const int room = fcntl(writing.get(), F_GETPIPE_SZ);
    ASSERT_GT(room, 4096);
    ASSERT_TRUE(writeAll(writing.get(), std::string(static_cast<std::size_t>(room) - 1, 'x')));
    int asked = 0;
    EXPECT_FALSE(writeUnless([&] { return ++asked > 1; }, writing.get(), "y"));
    EXPECT_EQ(errno, EINTR);
    EXPECT_FALSE(writeUnless([] { return false; }, reading.get(), "y"));
    EXPECT_EQ(errno, EBADF);
}

TEST(WriteAll, TellsWhyItFailed)
{
    EXPECT_FALSE(writeAll(-1, "x"));
    EXPECT_EQ(errno, EBADF);
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_FALSE(writeAll(full.get(), "x"));
    EXPECT_EQ(errno, ENOSPC);
}

TEST(Descriptors, AreKeptOutOfTheRangeOfTheStandardStreams)
{
    EXPECT_EQ(aboveStandardStreams(-1), -1);
    const Descriptor high(aboveStandardStreams(open("/dev/null", O_RDONLY | O_CLOEXEC)));
    EXPECT_GT(high.get(), STDERR_FILENO);
    EXPECT_NE(fcntl(high.get(), F_GETFD) & FD_CLOEXEC, 0);
}

} // namespace

} // namespace tavrix
