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
    if (dot == std::string::npos || dot == 0 || name.size() - dot > 16) {
        return {};
    }
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

// A writer holds a lock on its hidden file, so one that can be locked has lost its writer.
void removeIfAbandoned(int folderFd, const char* name)
{
    const int fd = openat(folderFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    struct stat info = {};
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
        flock(fd, LOCK_EX | LOCK_NB) == 0) {
        unlinkat(folderFd, name, 0);
    }
    close(fd);
}

void removeAbandoned(int folderFd)
{
    const int listing = openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listing < 0) {
        return;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(fdopendir(listing), closedir);
    if (!directory) {
        close(listing);
        return;
    }
    while (const dirent* entry = readdir(directory.get())) {
        if (std::string_view(entry->d_name).starts_with(hiddenPrefix)) {
            removeIfAbandoned(folderFd, entry->d_name);
        }
    }
}

// A folder that may be written to but not listed is good enough.
int openFolder(const std::string& path)
{
    int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0 && errno == EACCES) {
        fd = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    }
    return aboveStandardStreams(fd);
}

// Some file systems know no flushing.
bool flushToDisk(int fd)
{
    return fsync(fd) == 0 || errno == EINVAL;
}

// Network file systems report late write errors when a descriptor is closed; closing a copy keeps the lock.
bool flushByClosing(int fd)
{
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && close(copy) == 0;
}

} // namespace

std::optional<SafeOutput> SafeOutput::open(const std::string& finalPath, std::string& error, Style style)
{
    SafeOutput output;
    output.finalPath_ = finalPath;
    const auto slash = finalPath.rfind('/');
    output.name_ = slash == std::string::npos ? finalPath : finalPath.substr(slash + 1);
    output.folder_ = slash == std::string::npos ? std::string(".") : finalPath.substr(0, slash + 1);
    if (output.name_.empty() || output.name_ == "." || output.name_ == "..") {
        error = errorText(EISDIR);
        return std::nullopt;
    }
    if (output.name_.size() > 255) {
        error = errorText(ENAMETOOLONG);
        return std::nullopt;
    }
    struct stat existing = {};
    output.folderFd_ = openFolder(output.folder_);
    if (output.folderFd_ < 0) {
        error = errorText(errno);
        return std::nullopt;
    }
    // A link to a folder is as little to be replaced as the folder itself.
    if (fstatat(output.folderFd_, output.name_.c_str(), &existing, 0) == 0 && S_ISDIR(existing.st_mode)) {
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
    fd_ = aboveStandardStreams(openat(folderFd_, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, fileMode));
    if (fd_ < 0) {
        return false;
    }
    path_ = descriptorPath(fd_);
    // Without /proc the file could be neither handed over nor published. The lock is for the moment in which the file
    // has a hidden name.
    if (access(path_.c_str(), W_OK) == 0 && flock(fd_, LOCK_EX | LOCK_NB) == 0) {
        return true;
    }
    close(std::exchange(fd_, -1));
    return false;
}

bool SafeOutput::openHidden()
{
    removeAbandoned(folderFd_);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(name_);
        const int fd = aboveStandardStreams(
            openat(folderFd_, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            return false;
        }
        struct stat info = {};
        const bool locked = flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // Another process may have taken the file for an abandoned one before it was locked.
        if (locked && fstat(fd, &info) == 0 && info.st_nlink > 0) {
            fd_ = fd;
            hiddenName_ = name;
            guard_ = guardFile(folderFd_, name);
            path_ = (folder_.ends_with('/') ? folder_ : folder_ + '/') + name;
            return true;
        }
        close(fd);
    }
    errno = EEXIST;
    return false;
}

SafeOutput::SafeOutput(SafeOutput&& other) noexcept
    : finalPath_(std::move(other.finalPath_)), folder_(std::move(other.folder_)), name_(std::move(other.name_)),
      hiddenName_(std::exchange(other.hiddenName_, {})), path_(std::move(other.path_)),
      folderFd_(std::exchange(other.folderFd_, -1)), fd_(std::exchange(other.fd_, -1)),
      guard_(std::exchange(other.guard_, -1))
{
}

SafeOutput& SafeOutput::operator=(SafeOutput&& other) noexcept
{
    if (this != &other) {
        discard();
        finalPath_ = std::move(other.finalPath_);
        folder_ = std::move(other.folder_);
        name_ = std::move(other.name_);
        hiddenName_ = std::exchange(other.hiddenName_, {});
        path_ = std::move(other.path_);
        folderFd_ = std::exchange(other.folderFd_, -1);
        fd_ = std::exchange(other.fd_, -1);
        guard_ = std::exchange(other.guard_, -1);
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
    return fstat(fd_, &info) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
}

bool SafeOutput::commit(std::string& error, Durability durability, Existing existing)
{
    const bool flushed = (durability == Durability::Unsynced || flushToDisk(fd_)) && flushByClosing(fd_);
    const bool published = flushed && publish(existing);
    if (!published) {
        error = errorText(errno);
    } else if (durability == Durability::Synced) {
        fsync(folderFd_); // the file is there; its name may reach the disk later on systems that refuse this
    }
    discard();
    return published;
}

bool SafeOutput::publish(Existing existing)
{
    if (hiddenName_.empty()) {
        const std::string source = descriptorPath(fd_);
        if (linkat(AT_FDCWD, source.c_str(), folderFd_, name_.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            return true;
        }
        // A file cannot be linked over another one: it gets a hidden name for the moment before the rename.
        if (errno != EEXIST || existing == Existing::Kept || !giveHiddenName()) {
            return false;
        }
    }
    if (!renameToFinal(existing)) {
        return false;
    }
    hiddenName_.clear();
    return true;
}

bool SafeOutput::giveHiddenName()
{
    removeAbandoned(folderFd_);
    const std::string source = descriptorPath(fd_);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(name_);
        if (linkat(AT_FDCWD, source.c_str(), folderFd_, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            hiddenName_ = name;
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

bool SafeOutput::renameToFinal(Existing existing)
{
    if (existing == Existing::Kept) {
        if (renameat2(folderFd_, hiddenName_.c_str(), folderFd_, name_.c_str(), RENAME_NOREPLACE) == 0) {
            return true;
        }
        struct stat info = {};
        // Not every file system can look and rename in one step.
        if (errno != EINVAL && errno != ENOSYS) {
            return false;
        }
        if (fstatat(folderFd_, name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
            errno = EEXIST;
            return false;
        }
    }
    return renameat(folderFd_, hiddenName_.c_str(), folderFd_, name_.c_str()) == 0;
}

void SafeOutput::discard()
{
    if (!hiddenName_.empty() && folderFd_ >= 0) {
        unlinkat(folderFd_, hiddenName_.c_str(), 0);
    }
    hiddenName_.clear();
    if (guard_ >= 0) {
        close(std::exchange(guard_, -1));
    }
    if (fd_ >= 0) {
        close(std::exchange(fd_, -1));
    }
    if (folderFd_ >= 0) {
        close(std::exchange(folderFd_, -1));
    }
}

} // namespace tavrix
