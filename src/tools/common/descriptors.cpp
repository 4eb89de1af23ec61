#include "tools/common/descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tavrix
{

int aboveStandardStreams(int fd)
{
    if (fd < 0 || fd > STDERR_FILENO) {
        return fd;
    }
    const int moved = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int reason = errno;
    close(fd);
    errno = reason;
    return moved;
}

bool writeUnless(const std::function<bool()>& givesUp, int fd, std::string_view bytes)
{
    constexpr int halfASecond = 500;
    // The reading end of a pipe would never be ready.
    const int flags = fcntl(fd, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) {
        errno = EBADF;
        return false;
    }
    while (!givesUp()) {
        pollfd room = {fd, POLLOUT, 0};
        // A pipe that has room at all has room for all of it, so that nothing blocks where no signal would be seen.
        if (poll(&room, 1, halfASecond) > 0) {
            return writeAll(fd, bytes);
        }
    }
    errno = EINTR;
    return false;
}

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            pollfd room = {fd, POLLOUT, 0};
            if (errno == EAGAIN && (poll(&room, 1, -1) >= 0 || errno == EINTR)) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace tavrix
