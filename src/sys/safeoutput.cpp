// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/safeoutput.h"

#include "sys/errortext.h"
#include "sys/fileguard.h"
#include "sys/foldernames.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
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
constexpr std::size_t longestName = 255;

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
void removeIfAbandoned(const Descriptor& folder, const char* name)
{
    const Descriptor file = openFileAt(folder.get(), name, O_RDONLY | O_NOFOLLOW);
    struct stat info = {};
    if (file.isOpen() && fstat(file.get(), &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
        flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        unlinkat(folder.get(), name, 0);
    }
}

void removeAbandoned(const Descriptor& folder)
{
    const Descriptor listed = openFileAt(folder.get(), ".", O_RDONLY | O_DIRECTORY);
    for (const std::string& name : namesIn(listed).value_or(std::vector<std::string>())) {
        if (name.starts_with(hiddenPrefix)) {
            removeIfAbandoned(folder, name.c_str());
        }
    }
}

// A folder that may be written to but not listed is good enough.
Descriptor openFolder(const std::string& path)
{
    Descriptor folder = openFile(path.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder.isOpen() && errno == EACCES) {
        folder = openFile(path.c_str(), O_PATH | O_DIRECTORY);
    }
    return aboveStandardStreams(std::move(folder));
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
    return copy >= 0 && ::close(copy) == 0;
}

} // namespace

Result<SafeOutput> SafeOutput::open(const std::string& finalPath, Style style, mode_t mode)
{
    SafeOutput output;
    output.finalPath_ = finalPath;
    const auto slash = finalPath.rfind('/');
    output.name_ = slash == std::string::npos ? finalPath : finalPath.substr(slash + 1);
    output.folderPath_ = slash == std::string::npos ? std::string("./") : finalPath.substr(0, slash + 1);
    if (output.name_.empty() || output.name_ == "." || output.name_ == "..") {
        return Failure{errorText(EISDIR)};
    }
    if (output.name_.size() > longestName) {
        return Failure{errorText(ENAMETOOLONG)};
    }
    output.folder_ = openFolder(output.folderPath_);
    if (!output.folder_.isOpen()) {
        return Failure{errorText(errno)};
    }
    struct stat existing = {};
    // A link to a folder is as little to be replaced as the folder itself.
    if (fstatat(output.folder_.get(), output.name_.c_str(), &existing, 0) == 0 && S_ISDIR(existing.st_mode)) {
        return Failure{errorText(EISDIR)};
    }
    const bool anonymous = style != Style::Hidden && output.openAnonymous(mode);
    if (!anonymous && !output.openHidden(style, mode)) {
        return Failure{errorText(errno)};
    }
    return output;
}

bool SafeOutput::openAnonymous(mode_t mode)
{
    file_ = aboveStandardStreams(openFileAt(folder_.get(), ".", O_TMPFILE | O_RDWR, mode));
    if (!file_.isOpen()) {
        return false;
    }
    path_ = descriptorPath(file_.get());
    // Without /proc the file could be neither handed over nor published. The lock is for the moment in which the file
    // has a hidden name.
    if (access(path_.c_str(), W_OK) == 0 && flock(file_.get(), LOCK_EX | LOCK_NB) == 0) {
        return true;
    }
    file_.reset();
    return false;
}

bool SafeOutput::openHidden(Style style, mode_t mode)
{
    removeAbandoned(folder_);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(name_);
        Descriptor file =
            aboveStandardStreams(openFileAt(folder_.get(), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode));
        if (!file.isOpen()) {
            if (errno == EEXIST) {
                continue;
            }
            return false;
        }
        struct stat info = {};
        const bool locked = flock(file.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        // Another process may have taken the file for an abandoned one before it was locked.
        if (locked && fstat(file.get(), &info) == 0 && info.st_nlink > 0) {
            file_ = std::move(file);
            hiddenName_ = name;
            path_ = folderPath_ + name;
            if (style != Style::Brief) {
                guard_ = guardFile(folder_.get(), name);
            }
            return true;
        }
    }
    errno = EEXIST;
    return false;
}

SafeOutput& SafeOutput::operator=(SafeOutput&& other) noexcept
{
    if (this != &other) {
        discard();
        finalPath_ = std::move(other.finalPath_);
        folderPath_ = std::move(other.folderPath_);
        name_ = std::move(other.name_);
        hiddenName_ = std::move(other.hiddenName_);
        path_ = std::move(other.path_);
        replaceable_ = other.replaceable_;
        folder_ = std::move(other.folder_);
        file_ = std::move(other.file_);
        guard_ = std::move(other.guard_);
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
    return fstat(file_.get(), &info) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
}

Result<void> SafeOutput::commit(Durability durability, Existing existing)
{
    const bool flushed =
        (durability == Durability::Unsynced || flushToDisk(file_.get())) && flushByClosing(file_.get());
    Result<void> published;
    if (!flushed || !publish(existing)) {
        published = Failure{errorText(errno)};
    } else if (durability == Durability::Synced) {
        fsync(folder_.get()); // the file is there; its name may reach the disk later on systems that refuse this
    }
    discard();
    return published;
}

bool SafeOutput::publish(Existing existing)
{
    if (hiddenName_.empty()) {
        const std::string source = descriptorPath(file_.get());
        if (linkat(AT_FDCWD, source.c_str(), folder_.get(), name_.c_str(), AT_SYMLINK_FOLLOW) == 0) {
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
    removeAbandoned(folder_);
    const std::string source = descriptorPath(file_.get());
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const std::string name = freshHiddenName(name_);
        if (linkat(AT_FDCWD, source.c_str(), folder_.get(), name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            hiddenName_ = name;
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

// Looks as late as can be: between this look and the rename is no time for anybody.
bool SafeOutput::renameToFinal(Existing existing)
{
    if (existing == Existing::Kept) {
        return renameIntoGap();
    }
    struct stat standing = {};
    if (replaceable_ && fstatat(folder_.get(), name_.c_str(), &standing, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT && renameIntoGap();
    }
    if (replaceable_ && identityOf(standing) != *replaceable_) {
        errno = EEXIST;
        return false;
    }
    return renameat(folder_.get(), hiddenName_.c_str(), folder_.get(), name_.c_str()) == 0;
}

bool SafeOutput::renameIntoGap()
{
    if (renameat2(folder_.get(), hiddenName_.c_str(), folder_.get(), name_.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Not every file system can look and rename in one step.
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    struct stat info = {};
    if (fstatat(folder_.get(), name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return renameat(folder_.get(), hiddenName_.c_str(), folder_.get(), name_.c_str()) == 0;
}

void SafeOutput::discard()
{
    if (!hiddenName_.empty() && folder_.isOpen()) {
        unlinkat(folder_.get(), hiddenName_.c_str(), 0);
    }
    hiddenName_.clear();
    guard_.reset();
    file_.reset();
    folder_.reset();
}

} // namespace tavrix
