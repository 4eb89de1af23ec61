// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Reading and writing everything, through interruptions and partial transfers.

#include "sys/descriptor.h"
#include "sys/errortext.h"
#include "sys/result.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace tavrix
{

// One read, repeated while a signal interrupts it: the number of bytes, 0 at the end, -1 with errno.
[[nodiscard]] ssize_t readSome(int fd, void* bytes, std::size_t size);

// Everything from the descriptor's position on. No value, with errno, on a read error and above the limit in bytes
// (EFBIG). `Bytes` is any growing array of bytes: std::string, std::vector<char>, QByteArray.
template <typename Bytes> [[nodiscard]] std::optional<Bytes> readAll(int fd, std::uint64_t limit)
{
    using Size = decltype(Bytes().size());
    constexpr std::size_t chunk = 1 << 16;
    Bytes bytes;
    for (;;) {
        const Size used = bytes.size();
        bytes.resize(used + static_cast<Size>(chunk));
        const ssize_t got = readSome(fd, bytes.data() + used, chunk);
        bytes.resize(used + static_cast<Size>(got > 0 ? got : 0));
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            return bytes;
        }
        if (static_cast<std::uint64_t>(bytes.size()) > limit) {
            errno = EFBIG;
            return std::nullopt;
        }
    }
}

enum class ReadState { Data, Nothing, End };

// One read of at most 128 KiB, more than a pipe holds, so that a chunk is never cut by this side. `Nothing` when the
// pipe is empty for now, `End` at end of stream or on an error; the chunk is empty then.
template <typename Bytes> [[nodiscard]] ReadState readChunk(int fd, Bytes& chunk)
{
    using Size = decltype(Bytes().size());
    constexpr std::size_t chunkSize = 131072;
    chunk.resize(static_cast<Size>(chunkSize));
    const ssize_t got = readSome(fd, chunk.data(), chunkSize);
    const bool emptyForNow = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    chunk.resize(static_cast<Size>(got > 0 ? got : 0));
    if (got > 0) {
        return ReadState::Data;
    }
    return emptyForNow ? ReadState::Nothing : ReadState::End;
}

// Bytes waiting in a pipe; 0 when that cannot be told.
[[nodiscard]] std::int64_t waitingBytes(int fd);

// Opens a regular file of at most that many bytes, with `flags` beside reading.
[[nodiscard]] Result<Descriptor> openWithin(std::uint64_t limit, const char* path, int flags);

// Reads a regular file, opened with `flags` beside reading. A device, a pipe or a folder has no end that can be
// relied on and fails; so does a file of more bytes than the limit, which is not read.
template <typename Bytes> [[nodiscard]] Result<Bytes> readFile(const char* path, std::uint64_t limit, int flags = 0)
{
    const Result<Descriptor> file = openWithin(limit, path, flags);
    if (!file) {
        return Failure{file.reason()};
    }
    std::optional<Bytes> bytes = readAll<Bytes>(file->get(), limit);
    if (!bytes) {
        return Failure{errorText(errno)};
    }
    return std::move(*bytes);
}

// Writes everything, and waits for room where the descriptor does not block. False, with errno, when that fails.
[[nodiscard]] bool writeAll(int fd, std::string_view bytes);

// The same for at most PIPE_BUF bytes, but given up (errno EINTR) when `givesUp` says so: it is asked twice a second
// while a reader leaves no room.
[[nodiscard]] bool writeUnless(const std::function<bool()>& givesUp, int fd, std::string_view bytes);

enum class Copied { Whole, ReadFailed, WriteFailed };

// Copies everything from one descriptor's position on to the other's; errno tells why it was not whole.
[[nodiscard]] Copied copyAll(int from, int to);

} // namespace tavrix
