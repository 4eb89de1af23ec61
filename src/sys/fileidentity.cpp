// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/fileidentity.h"

#include <cerrno>

namespace tavrix
{

namespace
{

using Ask = int (*)(const char*, struct stat*);

std::optional<struct stat> statusBy(Ask ask, const char* path)
{
    struct stat status = {};
    if (path == nullptr) {
        errno = ENOENT;
        return std::nullopt;
    }
    return ask(path, &status) == 0 ? std::optional(status) : std::nullopt;
}

} // namespace

FileIdentity identityOf(const struct stat& status)
{
    constexpr std::int64_t nanosecondsPerSecond = 1000000000;
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
            status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

std::optional<struct stat> followedStatus(const char* path)
{
    return statusBy(&::stat, path);
}

std::optional<struct stat> linkStatus(const char* path)
{
    return statusBy(&::lstat, path);
}

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool sameFile(const FileIdentity& a, const FileIdentity& b)
{
    return a.device == b.device && a.inode == b.inode;
}

bool sameFile(const char* a, const char* b)
{
    const std::optional<struct stat> first = followedStatus(a);
    const std::optional<struct stat> second = followedStatus(b);
    return first && second && sameFile(*first, *second);
}

} // namespace tavrix
