#include "base/treecopy.h"

#include "base/posixfile.h"
#include "base/treeremoval.h"

#include <QFile>
#include <QList>

#include <array>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

constexpr mode_t keptModes = 01777; // a copy gets no set-user-id or set-group-id

bool copyAll(const FileDescriptor& from, const FileDescriptor& to)
{
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    for (;;) {
        const ssize_t got = ::read(from.get(), buffer.data(), static_cast<std::size_t>(buffer.size()));
        if (got == 0) {
            return true;
        }
        if (got < 0 && errno != EINTR) {
            return false;
        }
        if (got > 0 && !writeAllTo(to, QByteArray::fromRawData(buffer.constData(), static_cast<qsizetype>(got)))) {
            return false;
        }
    }
}

// A file system that cannot sync a folder (EINVAL) keeps nothing back either.
bool reachesDisk(const FileDescriptor& item)
{
    return ::fsync(item.get()) == 0 || errno == EINVAL;
}

// The folder's entry of a new item has to be as durable as the item.
bool parentReachesDisk(const QByteArray& item)
{
    const qsizetype slash = item.lastIndexOf('/');
    QByteArray parent(".");
    if (slash >= 0) {
        parent = slash == 0 ? QByteArray("/") : item.left(slash);
    }
    const FileDescriptor folder = openFile(parent, O_RDONLY | O_DIRECTORY);
    return folder.isOpen() && reachesDisk(folder);
}

bool keepAttributes(const FileDescriptor& copy, const struct stat& original)
{
    const std::array<timespec, 2> times{original.st_atim, original.st_mtim};
    return ::fchmod(copy.get(), original.st_mode & keptModes) == 0 && ::futimens(copy.get(), times.data()) == 0;
}

bool copyRegularFile(const QByteArray& source, const QByteArray& destination, const struct stat& original, bool durable)
{
    const FileDescriptor from = openFile(source, O_RDONLY | O_NOFOLLOW);
    if (!from.isOpen()) {
        return false;
    }
    FileDescriptor to = openFile(destination, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!to.isOpen()) {
        return false;
    }
    const bool copied =
        copyAll(from, to) && keepAttributes(to, original) && (!durable || reachesDisk(to)) && to.close();
    if (!copied) {
        const int error = errno;
        ::unlink(destination.constData());
        errno = error;
    }
    return copied;
}

bool copyLink(const QByteArray& source, const QByteArray& destination)
{
    std::array<char, PATH_MAX + 1> target{};
    const ssize_t length = ::readlink(source.constData(), target.data(), target.size() - 1);
    return length >= 0 && ::symlink(target.data(), destination.constData()) == 0;
}

QList<QByteArray> namesIn(const QByteArray& folder, bool* ok)
{
    QList<QByteArray> names;
    DIR* stream = ::opendir(folder.constData());
    *ok = stream != nullptr;
    if (!stream) {
        return names;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(stream)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            names.append(name);
        }
    }
    *ok = errno == 0;
    ::closedir(stream);
    return names;
}

bool copyItem(const QByteArray& source, const QByteArray& destination, bool durable, QString* reason);

bool copyFolder(const QByteArray& source, const QByteArray& destination, const struct stat& original, bool durable,
                QString* reason)
{
    bool readable = false;
    const QList<QByteArray> names = namesIn(source, &readable);
    if (!readable || ::mkdir(destination.constData(), 0700) != 0) {
        *reason = QFile::decodeName(source) + QStringLiteral(": ") + systemErrorText();
        return false;
    }
    for (const QByteArray& name : names) {
        if (!copyItem(source + '/' + name, destination + '/' + name, durable, reason)) {
            return false;
        }
    }
    // Only now: every entry made has changed the folder's date, and a read-only mode would have kept them out.
    const FileDescriptor folder = openFile(destination, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (folder.isOpen() && keepAttributes(folder, original) && (!durable || reachesDisk(folder))) {
        return true;
    }
    *reason = QFile::decodeName(destination) + QStringLiteral(": ") + systemErrorText();
    return false;
}

bool copyItem(const QByteArray& source, const QByteArray& destination, bool durable, QString* reason)
{
    const std::optional<struct stat> status = linkStatus(source);
    if (status && S_ISDIR(status->st_mode)) {
        return copyFolder(source, destination, *status, durable, reason);
    }
    bool copied = false;
    if (status && S_ISREG(status->st_mode)) {
        copied = copyRegularFile(source, destination, *status, durable);
    } else if (status && S_ISLNK(status->st_mode)) {
        copied = copyLink(source, destination);
    } else if (status) {
        errno = ENOTSUP;
    }
    if (!copied) {
        *reason = QFile::decodeName(source) + QStringLiteral(": ") + systemErrorText();
    }
    return copied;
}

} // namespace

bool copyTree(const QByteArray& source, const QByteArray& destination, bool durable, QString* reason)
{
    if (linkStatus(destination)) {
        *reason = QFile::decodeName(destination) + QStringLiteral(": ") + systemErrorText(EEXIST);
        return false;
    }
    bool copied = copyItem(source, destination, durable, reason);
    if (copied && durable && !parentReachesDisk(destination)) {
        *reason = QFile::decodeName(destination) + QStringLiteral(": ") + systemErrorText();
        copied = false;
    }
    if (copied) {
        return true;
    }
    if (linkStatus(destination) && !removeTree(destination)) {
        *reason += QStringLiteral("; ") + QFile::decodeName(destination) + QStringLiteral(": ") + systemErrorText();
    }
    return false;
}

} // namespace tavrix
