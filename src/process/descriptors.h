#pragma once

#include <QByteArray>

// Owned file descriptors for talking to child processes. All are close-on-exec and above the three standard ones.
namespace tavrix
{

class UniqueFd
{
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    ~UniqueFd() { reset(); }
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept;
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;

    [[nodiscard]] int get() const { return fd_; }
    [[nodiscard]] bool isValid() const { return fd_ >= 0; }
    [[nodiscard]] int release();
    void reset();

private:
    int fd_ = -1;
};

struct Pipe {
    UniqueFd readEnd; // non-blocking when asked for
    UniqueFd writeEnd;
    [[nodiscard]] bool isValid() const { return readEnd.isValid() && writeEnd.isValid(); }
};

enum class PipeReader { Child, Parent };

// An invalid pipe (and errno) when the system has none left. The end that this program reads is non-blocking.
[[nodiscard]] Pipe makePipe(PipeReader reader);

enum class ReadState { Data, Nothing, End };

// One read of at most 128 KiB, more than a pipe holds, so that a chunk is never cut by this side. `Nothing` when the
// pipe is empty for now, `End` at end of stream or on an error.
[[nodiscard]] ReadState readChunk(int fd, QByteArray& chunk);

// Bytes waiting in the pipe; 0 when that cannot be told.
[[nodiscard]] qint64 waitingBytes(int fd);

} // namespace tavrix
