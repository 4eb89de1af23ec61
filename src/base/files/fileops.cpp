// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/fileops.h"

#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/posixfile.h"
#include "base/files/treecopy.h"
#include "base/files/treeremoval.h"
#include "base/text/datetext.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace tavrix
{
namespace
{

struct Transfer {
    QByteArray source;
    QByteArray destination;
};

bool liesBelow(const QByteArray& path, const QByteArray& folder)
{
    return !path.isEmpty() && !folder.isEmpty() && (folder == "/" || path.startsWith(folder + '/'));
}

// Where a path that need not exist yet would lie, without links.
QByteArray resolvedPlace(const QByteArray& item)
{
    const qsizetype slash = item.lastIndexOf('/');
    QByteArray parent(".");
    if (slash >= 0) {
        parent = slash == 0 ? QByteArray("/") : item.left(slash);
    }
    const QByteArray resolved = resolvedPath(parent);
    if (resolved.isEmpty()) {
        return {};
    }
    return (resolved == "/" ? resolved : resolved + '/') + item.mid(slash + 1);
}

// A folder can be neither copied nor moved into itself. A link to a folder can: it goes alone.
bool leadsIntoItself(const Transfer& transfer)
{
    const std::optional<struct stat> status = linkStatus(transfer.source);
    return status && S_ISDIR(status->st_mode) &&
           liesBelow(resolvedPlace(transfer.destination), resolvedPath(transfer.source));
}

Result<void, QString> copyNow(const Transfer& transfer)
{
    if (leadsIntoItself(transfer)) {
        return Failure{systemErrorText(EINVAL)};
    }
    return copyTree(transfer.source, transfer.destination, false);
}

int renameWithoutReplacing(const Transfer& transfer)
{
    if (::renameat2(AT_FDCWD, transfer.source.constData(), AT_FDCWD, transfer.destination.constData(),
                    RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // File systems without that flag, FAT cards among them.
    if (linkStatus(transfer.destination)) {
        return EEXIST;
    }
    return ::rename(transfer.source.constData(), transfer.destination.constData()) == 0 ? 0 : errno;
}

Result<void, QString> moveNow(const Transfer& transfer)
{
    const int error = renameWithoutReplacing(transfer);
    if (error == 0) {
        return {};
    }
    if (error != EXDEV) {
        return Failure{systemErrorText(error)};
    }
    // Another volume: the source goes only after the whole copy is on the disk.
    if (auto copied = copyTree(transfer.source, transfer.destination, true); !copied) {
        return copied;
    }
    if (!removeTree(transfer.source)) {
        return Failure{systemErrorText()};
    }
    return {};
}

// False when the transfer is refused; "ready" tells whether there is anything left to do.
bool prepare(const Transfer& transfer, const QString& source, const QString& destination, const QString& overwriteFlag,
             bool logRefusal, bool* ready)
{
    *ready = false;
    logDebug(QStringLiteral("File current         : %@"), {source});
    logDebug(QStringLiteral("File new             : %@"), {destination});
    if (!testPresenceC(source)) {
        logLine(QStringLiteral("File current        :-( does not exist: %@"), {source});
        return false;
    }
    if (testPresenceC(destination)) {
        if (overwriteFlag != QLatin1String("y")) {
            if (logRefusal) {
                logLine(QStringLiteral("New already exists   :-( %@"), {destination});
            } else {
                logDebug(QStringLiteral("New already exists   :-( %@"), {destination});
            }
            return false;
        }
        // Removing the destination first would remove the source itself or a part of it.
        if (isSameFile(source, destination) || leadsIntoItself(transfer) ||
            liesBelow(resolvedPlace(transfer.source), resolvedPath(transfer.destination))) {
            logLine(QStringLiteral("New overlaps current:-/ %@"), {destination});
            return true;
        }
        if (rmCocoa(destination)) {
            logLine(QStringLiteral("New deleted first    :-) %@"), {destination});
        }
    }
    *ready = true;
    return true;
}

} // namespace

// The line that says what was asked for stands in the log whatever became of it; a failure has one of its own before.
bool cpCocoa(const QString& source, const QString& destination, const QString& overwriteFlag)
{
    const QString from = stringByExpandingTildeInPath(source);
    const QString to = stringByExpandingTildeInPath(destination);
    const Transfer transfer{systemItemPath(from), systemItemPath(to)};
    bool ready = false;
    if (!prepare(transfer, from, to, overwriteFlag, false, &ready)) {
        return false;
    }
    if (!ready) {
        return true;
    }
    if (const Result<void, QString> copied = copyNow(transfer); !copied) {
        logLine(QStringLiteral("File not copied      :-( %@ : %@"), {to, copied.reason()});
    }
    logLine(QStringLiteral("File copied          :-) %@"), {to});
    return true;
}

bool mvCocoa(const QString& source, const QString& destination, const QString& overwriteFlag)
{
    const QString from = stringByExpandingTildeInPath(source);
    const QString to = stringByExpandingTildeInPath(destination);
    const Transfer transfer{systemItemPath(from), systemItemPath(to)};
    bool ready = false;
    if (!prepare(transfer, from, to, overwriteFlag, true, &ready)) {
        return false;
    }
    if (!ready) {
        return true;
    }
    if (const Result<void, QString> moved = moveNow(transfer); !moved) {
        logLine(QStringLiteral("File not moved      :-( %@ : %@"), {to, moved.reason()});
    }
    logLine(QStringLiteral("File moved          :-) %@"), {to});
    return true;
}

bool ln_sCocoa(const QString& source, const QString& linkPath)
{
    const QByteArray target = systemPath(source);
    const QByteArray link = systemPath(linkPath);
    if (target.isEmpty() || link.isEmpty()) {
        return false;
    }
    if (::symlink(target.constData(), link.constData()) == 0) {
        return true;
    }
    logLine(QStringLiteral("ln -s               :-( %@ : %@"), {linkPath, systemErrorText()});
    return false;
}

QString srcFromLn(const QString& linkPath)
{
    const QByteArray link = systemItemPath(linkPath);
    std::array<char, PATH_MAX + 1> target{};
    if (link.isEmpty() || ::readlink(link.constData(), target.data(), target.size() - 1) < 0) {
        return {};
    }
    return QFile::decodeName(QByteArray(target.data()));
}

bool mkdirCocoa(const QString& path)
{
    const QString expanded = stringByExpandingTildeInPath(path);
    const QByteArray bytes = systemPath(path);
    // The mode 0777 is the library's own, narrowed by the umask.
    const auto create = [&bytes] {
        std::error_code error;
        std::filesystem::create_directories(bytes.constData(), error);
        const std::optional<struct stat> status = followedStatus(bytes);
        return status && S_ISDIR(status->st_mode);
    };
    if (!create()) {
        logLine(QStringLiteral("mkdir               :-(  '%@'"), {expanded});
        if (!create()) {
            logLine(QStringLiteral("mkdir               :-(( '%@'"), {expanded});
            return false;
        }
    }
    logDebug(QStringLiteral("mkdir               :-)  '%@'"), {expanded});
    return true;
}

bool chmodCocoa(const QString& path, int mode, const QString& recursiveFlag)
{
    if (path.isNull()) {
        return false;
    }
    if (recursiveFlag.compare(QLatin1String("R"), Qt::CaseInsensitive) == 0) {
        logLine(QStringLiteral("faudra voir comment faire de la récursivité …"));
    }
    const QByteArray bytes = systemPath(path);
    if (bytes.isEmpty() || ::chmod(bytes.constData(), mode == 777 ? 0777 : 0755) != 0) {
        logLine(QStringLiteral("chmod               :-( %@ : %@"),
                {path, systemErrorText(bytes.isEmpty() ? ENOENT : errno)});
    }
    return true;
}

bool droitsAcces(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    QString folder = stringByExpandingTildeInPath(path);
    if (!isFolder(folder)) {
        folder = stringByDeletingLastPathComponent(folder) + u'/';
    }
    while (folder.startsWith(QLatin1String("//"))) {
        folder.remove(0, 1);
    }
    bool allowed = false;
    if (folder == QLatin1String("/")) {
        // Nothing made directly in the root could be removed again: the guarded delete refuses it.
        allowed = ::access("/", W_OK | X_OK) == 0;
    } else {
        const QString trial = stringByAppendingPathComponent(
            folder,
            formatText(QStringLiteral("_TXdir%d"), {static_cast<int>(QRandomGenerator::global()->bounded(INT_MAX))}));
        allowed = mkdirCocoa(trial);
        if (allowed) {
            rmCocoa(trial);
        }
    }
    logLine(QStringLiteral("droitsAcces ? %d"), {allowed ? 1 : 0});
    return allowed;
}

std::optional<qint64> creationSeconds(const QString& path)
{
    if (path.isNull()) {
        return std::nullopt;
    }
    const QByteArray bytes = systemPath(stringByStandardizingPath(path));
    struct statx status {
    };
    if (bytes.isEmpty() || ::statx(AT_FDCWD, bytes.constData(), 0, STATX_MTIME | STATX_BTIME, &status) != 0) {
        return std::nullopt;
    }
    // A copied clip is born when it is copied but keeps the camera's date as its modification time.
    qint64 seconds = status.stx_mtime.tv_sec;
    if ((status.stx_mask & STATX_BTIME) != 0) {
        seconds = std::min<qint64>(seconds, status.stx_btime.tv_sec);
    }
    return seconds;
}

QString dateCreation(const QString& path)
{
    const std::optional<qint64> seconds = creationSeconds(path);
    return seconds ? dateText(*seconds) : QString();
}

bool setModificationTime(const QString& path, qint64 seconds)
{
    const Descriptor file = openFile(systemItemPath(path), O_RDONLY | O_NOFOLLOW);
    struct stat status = {};
    const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, timespec{seconds, 0}};
    if (file.isOpen() && ::fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode)) {
        errno = EINVAL;
    } else if (file.isOpen() && ::futimens(file.get(), times.data()) == 0) {
        return true;
    }
    logLine(QStringLiteral("file date           :-( %@ : %@"), {path, systemErrorText()});
    return false;
}

} // namespace tavrix
