#include "base/filesizes.h"

#include "base/conversions.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/posixfile.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

constexpr double bytesPerMegabyte = 1048576.0;

int replacedFreeSpace = -1;

bool isBytesUnit(const QString& unit)
{
    return unit.isNull() || unit.compare(QStringLiteral("O"), Qt::CaseInsensitive) == 0;
}

double inUnit(qint64 bytes, const QString& unit)
{
    return isBytesUnit(unit) ? static_cast<double>(bytes) : octet2unite(bytes, unit);
}

// Sum of the entries of an open folder; descriptors bound the depth, so a deeper level counts 0 like anything
// unreadable.
double sizeBelow(FileDescriptor folder)
{
    DIR* stream = ::fdopendir(folder.get());
    if (!stream) {
        return 0.0;
    }
    const int descriptor = folder.release();
    double total = 0.0;
    while (const dirent* entry = ::readdir(stream)) {
        const QByteArray name(entry->d_name);
        struct stat status {
        };
        if (name == "." || name == ".." || ::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        total += static_cast<double>(status.st_size);
        if (S_ISDIR(status.st_mode)) {
            FileDescriptor child = openFileAt(descriptor, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            if (child.isOpen()) {
                total += sizeBelow(std::move(child));
            }
        }
    }
    ::closedir(stream);
    return total;
}

} // namespace

bool testPresenceC(const QString& path)
{
    const QByteArray bytes = systemPath(path);
    return !bytes.isEmpty() && openFile(bytes, O_RDONLY).isOpen();
}

bool testPresenceCocoa(const QString& path)
{
    return testPresenceC(path);
}

double poidsFileC(const QString& path, const QString& unit)
{
    const QByteArray bytes = systemPath(path);
    if (bytes.isEmpty()) {
        return -1.0;
    }
    const FileDescriptor file = openFile(bytes, O_RDONLY);
    struct stat status {
    };
    // The end of a folder is no size: the answer differs from one file system to the next.
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return -1.0;
    }
    const off_t end = ::lseek(file.get(), 0, SEEK_END);
    if (end < 0) {
        return -1.0;
    }
    const double size = inUnit(end, unit);
    logDebug(QStringLiteral("poidsFileC          :   %lld units"), {static_cast<qint64>(end)});
    logDebug(QStringLiteral("poidsFileC          :-) %.2f %@"), {size, unit});
    return size;
}

double poidsFile(const QString& path, const QString& unit)
{
    if (path.isNull()) {
        return -1.0;
    }
    const std::optional<struct stat> status = followedStatus(systemPath(stringByStandardizingPath(path)));
    if (!status) {
        return -1.0;
    }
    const double size = inUnit(status->st_size, unit);
    logDebug(QStringLiteral("current file size   : %lld units"), {static_cast<qint64>(status->st_size)});
    logDebug(QStringLiteral("current file size   : %.2f %@"), {size, unit});
    return size;
}

double poidsFolderMo(const QString& path)
{
    const QByteArray bytes = systemPath(path);
    FileDescriptor folder = bytes.isEmpty() ? FileDescriptor() : openFile(bytes, O_RDONLY | O_DIRECTORY);
    const double megabytes = folder.isOpen() ? sizeBelow(std::move(folder)) / bytesPerMegabyte : 0.0;
    logLine(QStringLiteral("current folder size  : %f Mo"), {megabytes});
    return megabytes;
}

int espaceDiskDispo(const QString& path)
{
    logLine(QStringLiteral("free disk space file: %@"), {path});
    if (path.isNull()) {
        return 0;
    }
    int megabytes = replacedFreeSpace;
    if (megabytes < 0) {
        struct statvfs volume {
        };
        const QByteArray bytes = systemPath(path);
        if (bytes.isEmpty() || ::statvfs(bytes.constData(), &volume) != 0) {
            logLine(QStringLiteral("error :-( %@"), {systemErrorText(bytes.isEmpty() ? ENOENT : errno)});
            return 0;
        }
        // Exact below the saturation: up to 2^53 bytes.
        megabytes = truncatedInt(static_cast<double>(volume.f_bavail) * static_cast<double>(volume.f_frsize) /
                                 bytesPerMegabyte);
    }
    logLine(QStringLiteral("free disk space     : %d Mo"), {megabytes});
    return megabytes;
}

bool disponible(const QString& path)
{
    const QByteArray bytes = systemPath(path);
    return !bytes.isEmpty() && openFile(bytes, O_RDWR).isOpen();
}

bool isFolder(const QString& path)
{
    const std::optional<struct stat> status = followedStatus(systemPath(path));
    return status && S_ISDIR(status->st_mode);
}

bool isSameFile(const QString& a, const QString& b)
{
    const std::optional<struct stat> first = followedStatus(systemPath(a));
    const std::optional<struct stat> second = followedStatus(systemPath(b));
    return first && second && sameInode(*first, *second);
}

void setFreeSpaceForTests(int megabytes)
{
    replacedFreeSpace = megabytes;
}

} // namespace tavrix
