// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/fileinfo.h"

#include "base/files/posixfile.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "sys/foldernames.h"

#include <cerrno>
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
double sizeBelow(const Descriptor& folder)
{
    double total = 0.0;
    const std::vector<std::string> names = namesIn(folder).value_or(std::vector<std::string>());
    for (const std::string& name : names) {
        struct stat status = {};
        if (::fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        total += static_cast<double>(status.st_size);
        if (S_ISDIR(status.st_mode)) {
            total += sizeBelow(openFileAt(folder.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
        }
    }
    return total;
}

} // namespace

bool testPresenceC(const QString& path)
{
    return openFile(systemPath(path), O_RDONLY).isOpen();
}

bool testPresenceCocoa(const QString& path)
{
    return testPresenceC(path);
}

double poidsFileC(const QString& path, const QString& unit)
{
    const Descriptor file = openFile(systemPath(path), O_RDONLY);
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
    const double megabytes = sizeBelow(openFile(systemPath(path), O_RDONLY | O_DIRECTORY)) / bytesPerMegabyte;
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
    return openFile(systemPath(path), O_RDWR).isOpen();
}

bool isFolder(const QString& path)
{
    const std::optional<struct stat> status = followedStatus(systemPath(path));
    return status && S_ISDIR(status->st_mode);
}

bool isSameFile(const QString& a, const QString& b)
{
    return sameFile(systemPath(a).constData(), systemPath(b).constData());
}

void setFreeSpaceForTests(int megabytes)
{
    replacedFreeSpace = megabytes;
}

} // namespace tavrix
