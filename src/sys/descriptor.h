// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Owned file descriptors. All that this program opens are close-on-exec.

#include <fcntl.h> // the flags of openFile
#include <sys/types.h>
#include <utility>

namespace tavrix
{

// Owns one descriptor and closes it; -1 is none.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool isOpen() const { return fd_ >= 0; }
    [[nodiscard]] int get() const { return fd_; }
    // Hands the descriptor over, open.
    [[nodiscard]] int release() { return std::exchange(fd_, -1); }
    // Closes the descriptor and takes the other one; errno stays as it was.
    void reset(int fd = -1);
    // False, with errno, when the system reports a late write error. Nothing open is a success.
    [[nodiscard]] bool close();

private:
    int fd_ = -1;
};

// open(2) without waiting for a writer of a FIFO and without taking a terminal over; errno tells why it is not open.
[[nodiscard]] Descriptor openFile(const char* path, int flags, mode_t mode = 0);
[[nodiscard]] Descriptor openFileAt(int folder, const char* name, int flags, mode_t mode = 0);

// Moves a new descriptor out of the range of the standard streams: a program that was started with one of them closed
// would take it for that stream, and it would be overwritten while a child's streams are arranged. Nothing stays
// nothing; errno tells why a move failed.
[[nodiscard]] Descriptor aboveStandardStreams(Descriptor descriptor);

struct Pipe {
    Descriptor readEnd; // does not block when this program reads it
    Descriptor writeEnd;
    [[nodiscard]] bool isOpen() const { return readEnd.isOpen() && writeEnd.isOpen(); }
};

enum class PipeReader { Child, Parent };

// Both ends are above the standard streams. Not open, with errno, when the system has none left.
[[nodiscard]] Pipe makePipe(PipeReader reader);

} // namespace tavrix
