// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/treecopy.h"

#include "base/files/posixfile.h"
#include "base/files/treeremoval.h"
#include "sys/foldernames.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

using Outcome = Result<void, QString>;

constexpr mode_t keptModes = 01777; // a copy gets no set-user-id or set-group-id

// A file system that cannot sync a folder (EINVAL) keeps nothing back either.
bool reachesDisk(const Descriptor& item)
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
    const Descriptor folder = openFile(parent, O_RDONLY | O_DIRECTORY);
    return folder.isOpen() && reachesDisk(folder);
}

bool keepAttributes(const Descriptor& copy, const struct stat& original)
{
    const std::array<timespec, 2> times{original.st_atim, original.st_mtim};
    return ::fchmod(copy.get(), original.st_mode & keptModes) == 0 && ::futimens(copy.get(), times.data()) == 0;
}

QString shown(const QByteArray& item, int error)
{
    return QFile::decodeName(item) + QStringLiteral(": ") + systemErrorText(error);
}

// The failure names the item that the system has refused: a full volume is none of the source's business.
Failure<QString> failedAt(const QByteArray& item)
{
    return Failure{shown(item, errno)};
}

// The side that failed; nothing when all of it was copied.
std::optional<QByteArray> failingSide(const QByteArray& source, const QByteArray& destination,
                                      const struct stat& original, bool durable)
{
    const Descriptor from = openFile(source, O_RDONLY | O_NOFOLLOW);
    if (!from.isOpen()) {
        return source;
    }
    Descriptor to = openFile(destination, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!to.isOpen()) {
        return destination;
    }
    const Copied copied = copyAll(from.get(), to.get());
    if (copied == Copied::Whole && keepAttributes(to, original) && (!durable || reachesDisk(to)) && to.close()) {
        return std::nullopt;
    }
    const int error = errno;
    ::unlink(destination.constData());
    errno = error;
    return copied == Copied::ReadFailed ? source : destination;
}

Outcome copyRegularFile(const QByteArray& source, const QByteArray& destination, const struct stat& original,
                        bool durable)
{
    const std::optional<QByteArray> failing = failingSide(source, destination, original, durable);
    return failing ? Outcome(failedAt(*failing)) : Outcome();
}

Outcome copyLink(const QByteArray& source, const QByteArray& destination)
{
    std::array<char, PATH_MAX + 1> target{};
    if (::readlink(source.constData(), target.data(), target.size() - 1) < 0) {
        return failedAt(source);
    }
    return ::symlink(target.data(), destination.constData()) == 0 ? Outcome() : Outcome(failedAt(destination));
}

Outcome copyItem(const QByteArray& source, const QByteArray& destination, bool durable);

Outcome copyFolder(const QByteArray& source, const QByteArray& destination, const struct stat& original, bool durable)
{
    const Descriptor from = openFile(source, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    const auto names = from.isOpen() ? namesIn(from) : std::nullopt;
    if (!names) {
        return failedAt(source);
    }
    if (::mkdir(destination.constData(), 0700) != 0) {
        return failedAt(destination);
    }
    for (const std::string& entry : *names) {
        const QByteArray name = '/' + QByteArray::fromStdString(entry);
        if (Outcome copied = copyItem(source + name, destination + name, durable); !copied) {
            return copied;
        }
    }
    // Only now: every entry made has changed the folder's date, and a read-only mode would have kept them out.
    const Descriptor made = openFile(destination, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    const bool whole = made.isOpen() && keepAttributes(made, original) && (!durable || reachesDisk(made));
    return whole ? Outcome() : Outcome(failedAt(destination));
}

Outcome copyItem(const QByteArray& source, const QByteArray& destination, bool durable)
{
    const std::optional<struct stat> status = linkStatus(source);
    if (status && S_ISDIR(status->st_mode)) {
        return copyFolder(source, destination, *status, durable);
    }
    if (status && S_ISREG(status->st_mode)) {
        return copyRegularFile(source, destination, *status, durable);
    }
    if (status && S_ISLNK(status->st_mode)) {
        return copyLink(source, destination);
    }
    if (status) {
        errno = ENOTSUP;
    }
    return failedAt(source);
}

} // namespace

Result<void, QString> copyTree(const QByteArray& source, const QByteArray& destination, bool durable)
{
    if (linkStatus(destination)) {
        return Failure{shown(destination, EEXIST)};
    }
    Outcome copied = copyItem(source, destination, durable);
    if (copied && durable && !parentReachesDisk(destination)) {
        copied = failedAt(destination);
    }
    if (!copied && linkStatus(destination) && !removeTree(destination)) {
        return Failure{copied.reason() + QStringLiteral("; ") + shown(destination, errno)};
    }
    return copied;
}

} // namespace tavrix
