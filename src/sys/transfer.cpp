// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/transfer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavrix
{

ssize_t readSome(int fd, void* bytes, std::size_t size)
{
    ssize_t got = -1;
    do {
        got = ::read(fd, bytes, size);
    } while (got < 0 && errno == EINTR);
    return got;
}

std::int64_t waitingBytes(int fd)
{
    int count = 0;
    return fd >= 0 && ::ioctl(fd, FIONREAD, &count) == 0 ? count : 0;
}

Result<Descriptor> openWithin(std::uint64_t limit, const char* path, int flags)
{
    Descriptor file = openFile(path, O_RDONLY | flags);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return Failure{errorText(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        return Failure{"not a regular file"};
    }
    if (static_cast<std::uint64_t>(status.st_size) > limit) {
        return Failure{errorText(EFBIG)};
    }
    return file;
}

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            pollfd room = {fd, POLLOUT, 0};
            if (errno == EAGAIN && (::poll(&room, 1, -1) >= 0 || errno == EINTR)) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeUnless(const std::function<bool()>& givesUp, int fd, std::string_view bytes)
{
    constexpr int halfASecond = 500;
    // The reading end of a pipe would never be ready.
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) {
        errno = EBADF;
        return false;
    }
    while (!givesUp()) {
        pollfd room = {fd, POLLOUT, 0};
        // A pipe that has room at all has room for all of it, so that nothing blocks where no signal would be seen.
        if (::poll(&room, 1, halfASecond) > 0) {
            return writeAll(fd, bytes);
        }
    }
    errno = EINTR;
    return false;
}

Copied copyAll(int from, int to)
{
    std::vector<char> buffer(std::size_t{1} << 20);
    for (;;) {
        const ssize_t got = readSome(from, buffer.data(), buffer.size());
        if (got <= 0) {
            return got == 0 ? Copied::Whole : Copied::ReadFailed;
        }
        if (!writeAll(to, {buffer.data(), static_cast<std::size_t>(got)})) {
            return Copied::WriteFailed;
        }
    }
}

} // namespace tavrix
