// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/descriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        reset(other.release());
    }
    return *this;
}

void Descriptor::reset(int fd)
{
    if (fd_ >= 0) {
        const int reason = errno;
        ::close(fd_);
        errno = reason;
    }
    fd_ = fd;
}

bool Descriptor::close()
{
    const int fd = release();
    return fd < 0 || ::close(fd) == 0;
}

Descriptor openFile(const char* path, int flags, mode_t mode)
{
    return openFileAt(AT_FDCWD, path, flags, mode);
}

Descriptor openFileAt(int folder, const char* name, int flags, mode_t mode)
{
    int fd = -1;
    do {
        fd = ::openat(folder, name, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode);
    } while (fd < 0 && errno == EINTR);
    return Descriptor(fd);
}

Descriptor aboveStandardStreams(Descriptor descriptor)
{
    if (!descriptor.isOpen() || descriptor.get() > STDERR_FILENO) {
        return descriptor;
    }
    return Descriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

Pipe makePipe(PipeReader reader)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return {};
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    Pipe made{aboveStandardStreams(std::move(readEnd)), aboveStandardStreams(std::move(writeEnd))};
    if (made.isOpen() && reader == PipeReader::Parent && ::fcntl(made.readEnd.get(), F_SETFL, O_NONBLOCK) != 0) {
        return {};
    }
    return made;
}

} // namespace tavrix
