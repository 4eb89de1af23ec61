// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/home.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace tavrix
{

std::string ownHome()
{
    const char* home = std::getenv("HOME"); // NOLINT(concurrency-mt-unsafe): nothing changes it while threads run
    return home != nullptr && home[0] == '/' ? std::string(home) : homeOfUser({});
}

std::string homeOfUser(const std::string& name)
{
    constexpr std::size_t largestEntry = std::size_t{1} << 20;
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> buffer(1024);
    int result = ERANGE;
    while (result == ERANGE && buffer.size() <= largestEntry) {
        buffer.resize(buffer.size() * 2);
        result = name.empty() ? getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)
                              : getpwnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found);
    }
    return result == 0 && found != nullptr && found->pw_dir[0] == '/' ? std::string(found->pw_dir) : std::string();
}

} // namespace tavrix
