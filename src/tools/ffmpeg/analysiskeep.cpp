// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/analysiskeep.h"

#include "sys/descriptor.h"
#include "sys/fileidentity.h"
#include "sys/keepfolder.h"
#include "sys/publication.h"
#include "sys/transfer.h"

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrix::front
{

namespace
{

constexpr std::uint64_t largestFile = 16U << 20U;

// A clip that takes longer is on a slow disk or hangs: whoever waits then looks for itself, under its own watchdog.
constexpr int mostWaits = 2500;
constexpr timespec oneWait = {0, 2000000};

constexpr const char* announcedSuffix = ".making";

std::string packed(const std::vector<std::string>& values)
{
    std::string bytes;
    for (const std::string& value : values) {
        bytes += std::to_string(value.size()) + '\n' + value;
    }
    return bytes;
}

std::optional<std::vector<std::string>> unpacked(std::string_view bytes)
{
    std::vector<std::string> values;
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::size_t size = 0;
        const auto [last, error] = std::from_chars(bytes.data(), bytes.data() + end, size);
        if (error != std::errc() || last != bytes.data() + end || size > bytes.size() - end - 1) {
            return std::nullopt;
        }
        values.emplace_back(bytes.substr(end + 1, size));
        bytes.remove_prefix(end + 1 + size);
    }
    return values;
}

bool isOwnFile(const struct stat& status)
{
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_nlink == 1 && (status.st_mode & 077) == 0;
}

} // namespace

std::optional<AnalysisKeep> AnalysisKeep::fromEnvironment()
{
    const char* const folder = std::getenv(keepVariable);
    return folder == nullptr ? std::nullopt : in(folder);
}

std::optional<AnalysisKeep> AnalysisKeep::in(std::string folder)
{
    while (folder.size() > 1 && folder.ends_with('/')) {
        folder.pop_back();
    }
    const auto status = linkStatus(folder.c_str());
    const bool own = status && S_ISDIR(status->st_mode) && status->st_uid == geteuid() && (status->st_mode & 077) == 0;
    if (!own || !folder.starts_with('/')) {
        return std::nullopt;
    }
    return AnalysisKeep(std::move(folder) + '/');
}

std::string AnalysisKeep::path(const std::string& name) const
{
    return folder_ + "kept-" + name;
}

void AnalysisKeep::store(const std::string& name, const std::string& key, const std::vector<std::string>& values) const
{
    const std::string made = path(name) + ".new";
    Descriptor file = openFile(made.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    if (!file.isOpen()) {
        return;
    }
    struct stat status = {};
    const bool written =
        fstat(file.get(), &status) == 0 && isOwnFile(status) && writeAll(file.get(), packed({key}) + packed(values));
    // Half a file is worse than none.
    if (!file.close() || !written || std::rename(made.c_str(), path(name).c_str()) != 0) {
        unlink(made.c_str());
    }
}

std::optional<std::vector<std::string>> AnalysisKeep::read(const std::string& name, const std::string& key) const
{
    const Descriptor file = openFile(path(name).c_str(), O_RDONLY | O_NOFOLLOW);
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !isOwnFile(status)) {
        return std::nullopt;
    }
    const auto bytes = readAll<std::string>(file.get(), largestFile);
    auto values = bytes ? unpacked(*bytes) : std::nullopt;
    if (!values || values->empty() || values->front() != key) {
        return std::nullopt;
    }
    values->erase(values->begin());
    return values;
}

void AnalysisKeep::remove(const std::string& name) const
{
    unlink(path(name).c_str());
    unlink((path(name) + announcedSuffix).c_str());
}

Descriptor AnalysisKeep::announce(const std::string& name) const
{
    Descriptor file = openFile((path(name) + announcedSuffix).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!file.isOpen() || flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return Descriptor();
    }
    return file;
}

void AnalysisKeep::await(const std::string& name) const
{
    const Descriptor file = openFile((path(name) + announcedSuffix).c_str(), O_RDONLY | O_NOFOLLOW);
    for (int i = 0; i < mostWaits && file.isOpen(); ++i) {
        if (flock(file.get(), LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            return;
        }
        nanosleep(&oneWait, nullptr);
    }
}

std::string contentKey(const std::string& path)
{
    const auto status = followedStatus(path.c_str());
    return status ? publication::replacesText(identityOf(*status)) : std::string();
}

} // namespace tavrix::front
