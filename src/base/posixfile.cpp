#include "base/posixfile.h"

#include "base/paths.h"

#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace tavrix
{

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other) {
        close();
        descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
}

bool FileDescriptor::close()
{
    const int descriptor = release();
    return descriptor < 0 || ::close(descriptor) == 0;
}

QByteArray systemPath(const QString& path)
{
    if (path.isNull() || path.contains(QChar(0))) {
        return {};
    }
    return nativePath(stringByExpandingTildeInPath(path));
}

QByteArray systemItemPath(const QString& path)
{
    QByteArray bytes = systemPath(path);
    while (bytes.size() > 1 && bytes.endsWith('/')) {
        bytes.chop(1);
    }
    return bytes;
}

FileDescriptor openFile(const QByteArray& path, int flags, mode_t mode)
{
    return openFileAt(AT_FDCWD, path, flags, mode);
}

FileDescriptor openFileAt(int folder, const QByteArray& name, int flags, mode_t mode)
{
    int descriptor = -1;
    do {
        descriptor = ::openat(folder, name.constData(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode);
    } while (descriptor < 0 && errno == EINTR);
    return FileDescriptor(descriptor);
}

std::optional<struct stat> followedStatus(const QByteArray& path)
{
    struct stat status {
    };
    if (path.isEmpty() || ::stat(path.constData(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

std::optional<struct stat> linkStatus(const QByteArray& path)
{
    struct stat status {
    };
    if (path.isEmpty() || ::lstat(path.constData(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

bool sameInode(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

std::optional<QByteArray> readAllFrom(const FileDescriptor& file, qint64 limit)
{
    constexpr qsizetype chunk = 1 << 16;
    QByteArray bytes;
    for (;;) {
        const qsizetype used = bytes.size();
        bytes.resize(used + chunk);
        const ssize_t got = ::read(file.get(), bytes.data() + used, static_cast<std::size_t>(chunk));
        bytes.resize(used + (got > 0 ? static_cast<qsizetype>(got) : 0));
        if (got == 0) {
            return bytes;
        }
        if (got < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (bytes.size() > limit) {
            errno = EFBIG;
            return std::nullopt;
        }
    }
}

bool writeAllTo(const FileDescriptor& file, const QByteArray& bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(file.get(), bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0) {
            written += static_cast<qsizetype>(count);
        }
    }
    return true;
}

QByteArray resolvedPath(const QByteArray& path)
{
    if (path.isEmpty()) {
        return {};
    }
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.constData(), nullptr), &std::free);
    return resolved ? QByteArray(resolved.get()) : QByteArray();
}

QString systemErrorText()
{
    return systemErrorText(errno);
}

QString systemErrorText(int error)
{
    return QString::fromStdString(std::error_code(error, std::generic_category()).message());
}

} // namespace tavrix
