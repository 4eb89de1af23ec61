// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/locate.h"

#include "sys/fileidentity.h"

#include <array>
#include <climits>
#include <unistd.h>
#include <vector>

namespace tavrix::front
{

namespace
{

bool isUsable(const std::string& candidate, std::string_view skipped)
{
    const auto status = followedStatus(candidate.c_str());
    if (!status || !S_ISREG(status->st_mode) || access(candidate.c_str(), X_OK) != 0) {
        return false;
    }
    const std::string surrounded = ' ' + std::string(skipped) + ' ';
    return surrounded.find(' ' + fileIdentity(candidate) + ' ') == std::string::npos;
}

} // namespace

std::optional<std::string> installedFfmpeg(std::string_view pathVariable, std::string_view skipped)
{
    std::vector<std::string> folders;
    while (!pathVariable.empty()) {
        const auto colon = pathVariable.find(':');
        folders.emplace_back(pathVariable.substr(0, colon));
        pathVariable.remove_prefix(colon == std::string_view::npos ? pathVariable.size() : colon + 1);
    }
    folders.insert(folders.end(), {"/usr/bin", "/usr/local/bin"});
    for (const std::string& folder : folders) {
        const std::string candidate = folder + "/ffmpeg";
        if (folder.starts_with('/') && isUsable(candidate, skipped)) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::string fileIdentity(const std::string& path)
{
    const auto status = followedStatus(path.c_str());
    return status ? std::to_string(status->st_dev) + ':' + std::to_string(status->st_ino) : std::string();
}

std::string ownPath(const std::string& startedAs)
{
    if (startedAs.starts_with('/')) {
        return startedAs;
    }
    std::array<char, PATH_MAX> buffer = {};
    if (startedAs.find('/') != std::string::npos && getcwd(buffer.data(), buffer.size()) != nullptr) {
        return std::string(buffer.data()) + '/' + startedAs;
    }
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : startedAs;
}

} // namespace tavrix::front
