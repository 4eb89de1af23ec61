// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which file a name stands for, and whether it is still the same one.

#include <cstdint>
#include <optional>
#include <sys/stat.h>

namespace tavrix
{

// Two equal ones are the same file with, as far as size and time tell, the same content.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;    // bytes
    std::int64_t modified = 0; // nanoseconds since 1970

    [[nodiscard]] bool operator==(const FileIdentity&) const = default;
};

[[nodiscard]] FileIdentity identityOf(const struct stat& status);

// Links are followed. No value, with errno, for nothing (null), "" and a path that cannot be asked about.
[[nodiscard]] std::optional<struct stat> followedStatus(const char* path);
// The same of a link itself.
[[nodiscard]] std::optional<struct stat> linkStatus(const char* path);

// True when both are one file, by device and inode, whatever its size is now.
[[nodiscard]] bool sameFile(const struct stat& a, const struct stat& b);
[[nodiscard]] bool sameFile(const FileIdentity& a, const FileIdentity& b);
// The same for two paths, links followed; false when either cannot be asked about.
[[nodiscard]] bool sameFile(const char* a, const char* b);

} // namespace tavrix
