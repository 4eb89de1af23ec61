// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/transfer.h"

#include "support/temphome.h"

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

TEST(ReadAll, StopsAtTheLimit)
{
    const std::string contents(200'000, 'x');
    for (const std::uint64_t limit : {std::uint64_t{200'000}, std::uint64_t{199'999}}) {
        Pipe pipe = makePipe(PipeReader::Child);
        std::thread writer([&pipe, &contents] {
            EXPECT_TRUE(writeAll(pipe.writeEnd.get(), contents));
            pipe.writeEnd.reset();
        });
        const auto read = readAll<std::string>(pipe.readEnd.get(), limit);
        const int reason = errno;
        EXPECT_EQ(read.has_value(), limit >= contents.size());
        EXPECT_TRUE(read ? *read == contents : reason == EFBIG);
        while (readAll<std::string>(pipe.readEnd.get(), limit).value_or("x") != "") {
        }
        writer.join();
    }
    EXPECT_FALSE(readAll<std::string>(-1, 1));
    EXPECT_EQ(errno, EBADF);
}

TEST(ReadFile, TakesRegularFilesUpToTheLimit)
{
    const test::TempFolder folder;
    const std::string file = folder.makeFile(QStringLiteral("file"), QByteArray("a\0b", 3)).toStdString();
    EXPECT_EQ(*readFile<std::string>(file.c_str(), 3), std::string("a\0b", 3));
    EXPECT_EQ(readFile<std::vector<char>>(file.c_str(), 3)->size(), 3U);
    EXPECT_EQ(readFile<std::string>(file.c_str(), 2).reason(), "File too large");
    EXPECT_EQ(readFile<std::string>("/dev/zero", 2).reason(), "not a regular file");
    EXPECT_EQ(readFile<std::string>(folder.path().toStdString().c_str(), 2).reason(), "not a regular file");
    EXPECT_EQ(readFile<std::string>((file + "x").c_str(), 2).reason(), "No such file or directory");
    const std::string link = file + ".link";
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    EXPECT_TRUE(readFile<std::string>(link.c_str(), 3));
    EXPECT_FALSE(readFile<std::string>(link.c_str(), 3, O_NOFOLLOW));
}

TEST(ReadFile, AFileLargerThanTheLimitIsNotReadFirst)
{
    const test::TempFolder folder;
    const std::string file = folder.path(QStringLiteral("sparse")).toStdString();
    const Descriptor made = openFile(file.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(ftruncate(made.get(), off_t{1} << 40), 0);
    EXPECT_EQ(readFile<std::string>(file.c_str(), std::uint64_t{1} << 30).reason(), "File too large");
}

TEST(ReadChunk, TellsAnEmptyPipeFromItsEnd)
{
    Pipe pipe = makePipe(PipeReader::Parent);
    std::string chunk = "old";
    EXPECT_EQ(readChunk(pipe.readEnd.get(), chunk), ReadState::Nothing);
    EXPECT_EQ(chunk, "");
    ASSERT_TRUE(writeAll(pipe.writeEnd.get(), "new"));
    EXPECT_EQ(waitingBytes(pipe.readEnd.get()), 3);
    EXPECT_EQ(readChunk(pipe.readEnd.get(), chunk), ReadState::Data);
    EXPECT_EQ(chunk, "new");
    pipe.writeEnd.reset();
    EXPECT_EQ(readChunk(pipe.readEnd.get(), chunk), ReadState::End);
    EXPECT_EQ(waitingBytes(-1), 0);
}

TEST(CopyAll, TellsWhichSideHasFailed)
{
    const test::TempFolder folder;
    const std::string contents(3'000'000, 'x');
    const std::string from = folder.makeFile(QStringLiteral("from"), QByteArray::fromStdString(contents)).toStdString();
    const std::string to = folder.path(QStringLiteral("to")).toStdString();
    const auto source = [&from] {
        return openFile(from.c_str(), O_RDONLY);
    };
    const Descriptor target = openFile(to.c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(copyAll(source().get(), target.get()), Copied::Whole);
    EXPECT_EQ(*readFile<std::string>(to.c_str(), contents.size()), contents);
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    EXPECT_EQ(copyAll(source().get(), full.get()), Copied::WriteFailed);
    EXPECT_EQ(errno, ENOSPC);
    const Descriptor place = openFile(folder.path().toStdString().c_str(), O_RDONLY);
    EXPECT_EQ(copyAll(place.get(), target.get()), Copied::ReadFailed);
    EXPECT_EQ(errno, EISDIR);
}

} // namespace

} // namespace tavrix
