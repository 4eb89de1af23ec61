#include "tools/common/descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace tavrix
{

std::string errorText(int number)
{
    return std::generic_category().message(number);
}

int aboveStandardStreams(int fd)
{
    if (fd < 0 || fd > STDERR_FILENO)
        return fd;
    const int moved = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int reason = errno;
    close(fd);
    errno = reason;
    return moved;
}

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR)
                continue;
            pollfd room = {fd, POLLOUT, 0};
            if (errno == EAGAIN && (poll(&room, 1, -1) >= 0 || errno == EINTR))
                continue;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace tavrix
