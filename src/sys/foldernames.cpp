// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/foldernames.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>

namespace tavrix
{

std::optional<std::vector<std::string>> namesIn(const Descriptor& folder)
{
    Descriptor own(::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0)); // the stream will close it
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(own.isOpen() ? ::fdopendir(own.get()) : nullptr, &::closedir);
    if (!stream) {
        return std::nullopt;
    }
    static_cast<void>(own.release());
    ::rewinddir(stream.get()); // both share one position
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return errno == 0 ? std::optional(std::move(names)) : std::nullopt;
}

} // namespace tavrix
