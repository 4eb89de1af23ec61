#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/stat.h>
#include <utility>

// The few system calls that the file functions share. Every descriptor is close-on-exec; opening never blocks on a
// FIFO.
namespace tavrix
{

// Owner of one descriptor.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }
    // False when the system reports a late write error.
    bool close();

private:
    int descriptor_ = -1;
};

// Bytes of the tilde-expanded path; empty for nothing and for a path that no system call can name (a NUL inside).
[[nodiscard]] QByteArray systemPath(const QString& path);
// The same without trailing "/", so that a link is met and not its target.
[[nodiscard]] QByteArray systemItemPath(const QString& path);

// open(2) with the flags plus close-on-exec and non-blocking; errno tells why it is not open.
[[nodiscard]] FileDescriptor openFile(const QByteArray& path, int flags, mode_t mode = 0);
[[nodiscard]] FileDescriptor openFileAt(int folder, const QByteArray& name, int flags, mode_t mode = 0);

[[nodiscard]] std::optional<struct stat> followedStatus(const QByteArray& path);
[[nodiscard]] std::optional<struct stat> linkStatus(const QByteArray& path); // of a link itself
[[nodiscard]] bool sameInode(const struct stat& a, const struct stat& b);

// Everything from the descriptor's position on; no value on a read error or above the limit (errno EFBIG).
[[nodiscard]] std::optional<QByteArray> readAllFrom(const FileDescriptor& file, qint64 limit);
[[nodiscard]] bool writeAllTo(const FileDescriptor& file, const QByteArray& bytes);

// Absolute path without links; empty when it does not exist.
[[nodiscard]] QByteArray resolvedPath(const QByteArray& path);
// Text for the current errno or the given one.
[[nodiscard]] QString systemErrorText();
[[nodiscard]] QString systemErrorText(int error);

} // namespace tavrix
