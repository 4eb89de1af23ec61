// Small helpers around file descriptors, for the tools.
#pragma once

#include "sys/errortext.h"

#include <functional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tavrix
{

// Owns a descriptor and closes it; -1 is none.
class Descriptor
{
public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return fd_; }
    // Hands the descriptor over, open.
    [[nodiscard]] int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1)
    {
        if (fd_ >= 0) {
            close(fd_);
        }
        fd_ = fd;
    }

private:
    int fd_;
};

// Moves a new descriptor out of the range of the standard streams, where a tool that was started with one of them
// closed would have it taken for that stream. Close-on-exec. A negative descriptor stays as it is, with errno.
[[nodiscard]] int aboveStandardStreams(int fd);

// Writes everything, through interruptions and partial writes, and waits for room where the descriptor does not block.
// False, with errno, when that fails.
[[nodiscard]] bool writeAll(int fd, std::string_view bytes);

// The same for at most PIPE_BUF bytes, but given up when `givesUp` says so: it is asked twice a second while a reader
// leaves no room.
[[nodiscard]] bool writeUnless(const std::function<bool()>& givesUp, int fd, std::string_view bytes);

} // namespace tavrix
