// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/treeremoval.h"

#include "base/files/posixfile.h"
#include "sys/foldernames.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

bool isMountPointAt(int folder, const QByteArray& name)
{
    struct statx status {
    };
    if (::statx(folder, name.constData(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) != 0) {
        return false;
    }
    const bool isTold = (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    if (isTold && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0) {
        return true;
    }
    if (!S_ISDIR(status.stx_mode)) {
        return false;
    }
    struct stat own {
    };
    struct stat parent {
    };
    if (::fstatat(folder, name.constData(), &own, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fstatat(folder, (name + "/..").constData(), &parent, 0) != 0) {
        return false;
    }
    // The root is its own parent, also where it is a folder that the process was confined to.
    const bool isRoot = own.st_dev == parent.st_dev && own.st_ino == parent.st_ino;
    // Kernels that do not tell: a folder on another device than its parent is a mounted volume.
    return isRoot || (!isTold && own.st_dev != parent.st_dev);
}

bool removeAt(int parent, const QByteArray& name)
{
    struct stat status {
    };
    if (::fstatat(parent, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT;
    }
    if (!S_ISDIR(status.st_mode)) {
        return ::unlinkat(parent, name.constData(), 0) == 0 || errno == ENOENT;
    }
    if (isMountPointAt(parent, name)) {
        errno = EBUSY;
        return false;
    }
    const Descriptor folder = openFileAt(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    const auto names = folder.isOpen() ? namesIn(folder) : std::nullopt;
    if (!names) {
        return false;
    }
    int firstError = 0;
    for (const std::string& entry : *names) {
        if (!removeAt(folder.get(), QByteArray::fromStdString(entry)) && firstError == 0) {
            firstError = errno;
        }
    }
    if (firstError != 0) {
        errno = firstError;
        return false;
    }
    return ::unlinkat(parent, name.constData(), AT_REMOVEDIR) == 0 || errno == ENOENT;
}

} // namespace

bool isMountPoint(const QByteArray& path)
{
    return isMountPointAt(AT_FDCWD, path);
}

bool removeTree(const QByteArray& path)
{
    QByteArray item = path;
    while (item.size() > 1 && item.endsWith('/')) {
        item.chop(1);
    }
    if (item.isEmpty()) {
        errno = ENOENT;
        return false;
    }
    return removeAt(AT_FDCWD, item);
}

} // namespace tavrix
