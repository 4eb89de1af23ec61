#include "tools/common/safeoutput.h"

#include "tools/common/descriptors.h"
#include "tools/common/fileguard.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrix
{

namespace
{

constexpr std::string_view hiddenPrefix = ".tavrix-part-";
constexpr int nameAttempts = 16;
constexpr mode_t fileMode = 0666; // less the umask

std::string descriptorPath(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

std::string extensionWithDot(const std::string& name)
{
    const auto dot = name.rfind('.');
    // A long "extension" would not fit into a file name beside the prefix.
    if (dot == std::string::npos || dot == 0 || name.size() - dot > 16)
        return {};
    return name.substr(dot);
}

std::string freshHiddenName(const std::string& finalName)
{
    unsigned char bytes[8] = {};
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
        const auto pid = getpid();
        std::memcpy(bytes, &pid, sizeof pid);
    }
    std::string name(hiddenPrefix);
    constexpr std::string_view digits = "0123456789abcdef";
    for (const unsigned char byte : bytes) {
        name += digits[byte >> 4];
        name += digits[byte & 15];
    }
    return name + extensionWithDot(finalName);
}

/// A writer holds a lock on its hidden file, so one that can be locked has lost its writer.
void removeIfAbandoned(int folderFd, const char* name)
{
    const int fd = openat(folderFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return;
    struct stat info = {};
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid() && flock(fd, LOCK_EX | LOCK_NB) == 0)
        unlinkat(folderFd, name, 0);
    close(fd);
}

void removeAbandoned(int folderFd)
{
    const int listing = openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listing < 0)
        return;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(fdopendir(listing), closedir);
    if (!directory) {
        close(listing);
        return;
    }
    while (const dirent* entry = readdir(directory.get())) {
        if (std::string_view(entry->d_name).starts_with(hiddenPrefix))
            removeIfAbandoned(folderFd, entry->d_name);
    }
}

/// A folder that may be written to but not listed is good enough.
int openFolder(const std::string& path)
{
    int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0 && errno == EACCES)
        fd = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return aboveStandardStreams(fd);
}

/// Some file systems know no flushing.
bool flushToDisk(int fd)
{
    return fsync(fd) == 0 || errno == EINVAL;
}

/// Network file systems report late write errors when a descriptor is closed; closing a copy keeps the lock.
bool flushByClosing(int fd)
{
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && close(copy) == 0;
}

} // namespace

std::optional<SafeOutput> SafeOutput::open(const std::string& finalPath, std::string& error, Style style)
{
    SafeOutput output;
    output.m_finalPath = finalPath;
    const auto slash = finalPath.rfind('/');
    output.m_name = slash == std::string::npos ? finalPath : finalPath.substr(slash + 1);
    output.m_folder = slash == std::string::npos ? std::string(".") : finalPath.substr(0, slash + 1);
    if (output.m_name.empty() || output.m_name == "." || output.m_name == "..") {
        error = errorText(EISDIR);
        return std::nullopt;
    }
    if (output.m_name.size() > 255) {
        error = errorText(ENAMETOOLONG);
        return std::nullopt;
    }
    struct stat existing = {};
    output.m_folderFd = openFolder(output.m_folder);
    if (output.m_folderFd < 0) {
        error = errorText(errno);
        return std::nullopt;
    }
    // A link to a folder is as little to be replaced as the folder itself.
    if (fstatat(output.m_folderFd, output.m_name.c_str(), &existing, 0) == 0 && S_ISDIR(existing.st_mode)) {
        error = errorText(EISDIR);
        return std::nullopt;
    }
    const bool anonymous = style == Style::Anonymous && output.openAnonymous();
    if (!anonymous && !output.openHidden()) {
        error = errorText(errno);
        return std::nullopt;
    }
    return output;
}

bool SafeOutput::openAnonymous()
{
    m_fd = aboveStandardStreams(openat(m_folderFd, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, fileMode));
    if (m_fd < 0)
        return false;
    m_path = descriptorPath(m_fd);
    // Without /proc the file could be neither handed over nor published. The lock is for the moment in which the file
    // has a hidden name.
    if (access(m_path.c_str(), W_OK) == 0 && flock(m_fd, LOCK_EX | LOCK_NB) == 0)
        return true;
    close(std::exchange(m_fd, -1));
    return false;
}

bool SafeOutput::openHidden()
{
    removeAbandoned(m_folderFd);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(m_name);
        const int fd = aboveStandardStreams(
            openat(m_folderFd, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return false;
        }
        struct stat info = {};
        const bool locked = flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // Another process may have taken the file for an abandoned one before it was locked.
        if (locked && fstat(fd, &info) == 0 && info.st_nlink > 0) {
            m_fd = fd;
            m_hiddenName = name;
            m_guard = guardFile(m_folderFd, name);
            m_path = (m_folder.ends_with('/') ? m_folder : m_folder + '/') + name;
            return true;
        }
        close(fd);
    }
    errno = EEXIST;
    return false;
}

SafeOutput::SafeOutput(SafeOutput&& other) noexcept
    : m_finalPath(std::move(other.m_finalPath)), m_folder(std::move(other.m_folder)), m_name(std::move(other.m_name)),
      m_hiddenName(std::exchange(other.m_hiddenName, {})), m_path(std::move(other.m_path)),
      m_folderFd(std::exchange(other.m_folderFd, -1)), m_fd(std::exchange(other.m_fd, -1)),
      m_guard(std::exchange(other.m_guard, -1))
{
}

SafeOutput& SafeOutput::operator=(SafeOutput&& other) noexcept
{
    if (this != &other) {
        discard();
        m_finalPath = std::move(other.m_finalPath);
        m_folder = std::move(other.m_folder);
        m_name = std::move(other.m_name);
        m_hiddenName = std::exchange(other.m_hiddenName, {});
        m_path = std::move(other.m_path);
        m_folderFd = std::exchange(other.m_folderFd, -1);
        m_fd = std::exchange(other.m_fd, -1);
        m_guard = std::exchange(other.m_guard, -1);
    }
    return *this;
}

SafeOutput::~SafeOutput()
{
    discard();
}

std::int64_t SafeOutput::size() const
{
    struct stat info = {};
    return fstat(m_fd, &info) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
}

bool SafeOutput::commit(std::string& error, Durability durability, Existing existing)
{
    const bool flushed = (durability == Durability::Unsynced || flushToDisk(m_fd)) && flushByClosing(m_fd);
    const bool published = flushed && publish(existing);
    if (!published)
        error = errorText(errno);
    else if (durability == Durability::Synced)
        fsync(m_folderFd); // the file is there; its name may reach the disk later on systems that refuse this
    discard();
    return published;
}

bool SafeOutput::publish(Existing existing)
{
    if (m_hiddenName.empty()) {
        const std::string source = descriptorPath(m_fd);
        if (linkat(AT_FDCWD, source.c_str(), m_folderFd, m_name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return true;
        // A file cannot be linked over another one: it gets a hidden name for the moment before the rename.
        if (errno != EEXIST || existing == Existing::Kept || !giveHiddenName())
            return false;
    }
    if (!renameToFinal(existing))
        return false;
    m_hiddenName.clear();
    return true;
}

bool SafeOutput::giveHiddenName()
{
    removeAbandoned(m_folderFd);
    const std::string source = descriptorPath(m_fd);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(m_name);
        if (linkat(AT_FDCWD, source.c_str(), m_folderFd, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            m_hiddenName = name;
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool SafeOutput::renameToFinal(Existing existing)
{
    if (existing == Existing::Kept) {
        if (renameat2(m_folderFd, m_hiddenName.c_str(), m_folderFd, m_name.c_str(), RENAME_NOREPLACE) == 0)
            return true;
        struct stat info = {};
        // Not every file system can look and rename in one step.
        if (errno != EINVAL && errno != ENOSYS)
            return false;
        if (fstatat(m_folderFd, m_name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
            errno = EEXIST;
            return false;
        }
    }
    return renameat(m_folderFd, m_hiddenName.c_str(), m_folderFd, m_name.c_str()) == 0;
}

void SafeOutput::discard()
{
    if (!m_hiddenName.empty() && m_folderFd >= 0)
        unlinkat(m_folderFd, m_hiddenName.c_str(), 0);
    m_hiddenName.clear();
    if (m_guard >= 0)
        close(std::exchange(m_guard, -1));
    if (m_fd >= 0)
        close(std::exchange(m_fd, -1));
    if (m_folderFd >= 0)
        close(std::exchange(m_folderFd, -1));
}

} // namespace tavrix
