#include "process/descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr qsizetype chunkSize = 131072;

// Moves a descriptor away from 0 to 2: there it would be overwritten while a child's streams are arranged.
UniqueFd aboveStandardStreams(int fd)
{
    UniqueFd owned(fd);
    if (fd > STDERR_FILENO) {
        return owned;
    }
    return UniqueFd(fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

} // namespace

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept
{
    if (this != &other) {
        reset();
        fd_ = other.release();
    }
    return *this;
}

int UniqueFd::release()
{
    const int fd = fd_;
    fd_ = -1;
    return fd;
}

void UniqueFd::reset()
{
    if (fd_ >= 0) {
        ::close(fd_);
    }
    fd_ = -1;
}

Pipe makePipe(PipeReader reader)
{
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return {};
    }
    Pipe made{aboveStandardStreams(ends[0]), aboveStandardStreams(ends[1])};
    if (!made.isValid()) {
        return {};
    }
    if (reader == PipeReader::Parent && fcntl(made.readEnd.get(), F_SETFL, O_NONBLOCK) != 0) {
        return {};
    }
    return made;
}

ReadState readChunk(int fd, QByteArray& chunk)
{
    chunk.resize(chunkSize);
    ssize_t got = -1;
    do {
        got = ::read(fd, chunk.data(), static_cast<size_t>(chunkSize));
    } while (got < 0 && errno == EINTR);
    chunk.resize(got > 0 ? static_cast<qsizetype>(got) : 0);
    if (got > 0) {
        return ReadState::Data;
    }
    return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? ReadState::Nothing : ReadState::End;
}

qint64 waitingBytes(int fd)
{
    int count = 0;
    return fd >= 0 && ioctl(fd, FIONREAD, &count) == 0 ? count : 0;
}

} // namespace tavrix
