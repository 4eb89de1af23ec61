// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filedelete.h"

#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/files/filelisting.h"
#include "base/files/posixfile.h"
#include "base/files/treeremoval.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tavrix
{
namespace
{

bool hasDotComponent(const QString& path)
{
    const QStringList components = path.split(u'/');
    return components.contains(QStringLiteral(".")) || components.contains(QStringLiteral(".."));
}

// True when the path or, for a link, what it leads to is that item.
bool namesItem(const QString& path, const struct stat& item)
{
    const std::optional<struct stat> own = linkStatus(nativePath(path));
    const std::optional<struct stat> target = followedStatus(nativePath(path));
    return (own && sameFile(*own, item)) || (target && sameFile(*target, item));
}

bool isOnTheWayTo(QString folder, const struct stat& item)
{
    for (;;) {
        if (namesItem(folder, item)) {
            return true;
        }
        const QString parent = stringByDeletingLastPathComponent(folder);
        if (parent == folder || parent.isEmpty()) {
            return false;
        }
        folder = parent;
    }
}

// True for the home folder, every folder or link that leads to it, and every mounted volume: losing one is losing all
// the user has.
bool isPrecious(const QByteArray& item)
{
    const std::optional<struct stat> status = linkStatus(item);
    if (!status) {
        return false;
    }
    const QString home = homeFolder();
    return isMountPoint(item) || isOnTheWayTo(home, *status) ||
           isOnTheWayTo(QFile::decodeName(resolvedPath(nativePath(home))), *status);
}

// Logs and answers true when the path must not be deleted.
bool isRefused(const QString& path, const QByteArray& item)
{
    const QString folderAlarm = QStringLiteral("alerte de sécurité dirname");
    if (hasDotComponent(path)) {
        logLine(folderAlarm);
        return true;
    }
    if (path.startsWith(QLatin1String("/TXauthoring/"))) {
        return false;
    }
    // The wildcards come first: their parent is the root, and the line must name the real danger.
    for (const QLatin1String wildcard :
         {QLatin1String("*"), QLatin1String("/*"), QLatin1String("/Volumes/*"), QLatin1String("/Volumes/Users/*")}) {
        if (path.startsWith(wildcard)) {
            logLine(QStringLiteral("alerte de sécurité joker"));
            return true;
        }
    }
    const QString parent = fichier_dirname(path);
    if (parent == QLatin1String("/") || parent == QLatin1String("/Volumes") || parent == QLatin1String("/Users") ||
        isPrecious(item)) {
        logLine(folderAlarm);
        return true;
    }
    return false;
}

// Only characters that stand for themselves in a URL: anything else could be read as a query, a fragment or an escape
// and would name another file.
bool isPlainUrlPath(const QString& path)
{
    const QLatin1String marks("-_.!~*'():@&=+$,/");
    for (const QChar character : path) {
        const bool alphanumeric = character.unicode() < 128 && character.isLetterOrNumber();
        if (!alphanumeric && !marks.contains(character)) {
            return false;
        }
    }
    return true;
}

// Creates the missing folders of an absolute path, each readable by the user alone.
bool makePrivateFolder(const QString& path)
{
    const QByteArray bytes = nativePath(path);
    if (followedStatus(bytes)) {
        return isFolder(path);
    }
    return makePrivateFolder(stringByDeletingLastPathComponent(path)) &&
           (::mkdir(bytes.constData(), 0700) == 0 || errno == EEXIST);
}

QString absolutePath(const QByteArray& item)
{
    return QDir::current().absoluteFilePath(QFile::decodeName(item));
}

bool moveToDesktopTrash(const QString& path)
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (!QDir::isAbsolutePath(data) || !QDir::isAbsolutePath(qEnvironmentVariable("HOME"))) {
        return false;
    }
    // Without these folders Qt moves the file into the working folder and reports success.
    if (!makePrivateFolder(data + QStringLiteral("/Trash/files")) ||
        !makePrivateFolder(data + QStringLiteral("/Trash/info"))) {
        return false;
    }
    QString place;
    return QFile::moveToTrash(path, &place) && QDir::isAbsolutePath(place);
}

bool moveToProgramTrash(const QString& path)
{
    QString data = qEnvironmentVariable("XDG_DATA_HOME");
    if (!QDir::isAbsolutePath(data)) {
        data = homeFolder() + QStringLiteral("/.local/share");
    }
    const QString folder = data + u'/' + bundleName() + QStringLiteral("/Trash");
    if (!makePrivateFolder(folder)) {
        return false;
    }
    const QByteArray from = nativePath(path);
    const QByteArray base = nativePath(folder + u'/' + lastPathComponent(path));
    QByteArray to = base;
    for (int number = 2;; ++number) {
        if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
        to = base + '.' + QByteArray::number(number);
    }
}

// True when the item has left its place.
bool leaveToTrash(const QByteArray& item)
{
    const QString path = absolutePath(item);
    if (!moveToDesktopTrash(path) && linkStatus(item) && !moveToProgramTrash(path)) {
        logLine(QStringLiteral("trash               :-( %@ : %@"), {path, systemErrorText()});
    }
    return !linkStatus(item);
}

bool removeItem(const QString& path, const QByteArray& item)
{
    if (isPlainUrlPath(path) && removeTree(item)) {
        return true;
    }
    logLine(QStringLiteral("File current        :-( not deleted 1"));
    const bool gone = leaveToTrash(item);
    logLine(QStringLiteral("File current        :-/ …to trash"));
    if (!gone) {
        logLine(QStringLiteral("File current        :-( failure"));
    }
    return gone;
}

std::function<void(const QString&)>& deletionObserver()
{
    static std::function<void(const QString&)> observer;
    return observer;
}

bool isAtOrBelow(const QByteArray& folder, const QByteArray& root)
{
    return folder == root || root == "/" || folder.startsWith(root + '/');
}

} // namespace

bool rmCocoa(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    logDebug(QStringLiteral("rmCocoa             - debut - %@"), {path});
    const QString expanded = stringByExpandingTildeInPath(path);
    const QByteArray item = systemItemPath(path);
    if (isRefused(expanded, item)) {
        return false;
    }
    const std::optional<struct stat> status = linkStatus(item);
    if (testPresenceC(QFile::decodeName(item))) {
        logDebug(QStringLiteral("File current        : exists: %@"), {expanded});
        if (!removeItem(expanded, item)) {
            return false;
        }
    } else if (status && S_ISLNK(status->st_mode) && ::unlink(item.constData()) != 0) {
        logLine(QStringLiteral("File current        :-( failure"));
        return false;
    }
    logDebug(QStringLiteral("rmCocoa             - pre-fin"));
    if (deletionObserver()) {
        deletionObserver()(expanded);
    }
    logDebug(QStringLiteral("rmCocoa             - fin - %@"), {expanded});
    return true;
}

void setDeletionObserver(std::function<void(const QString& path)> observer)
{
    deletionObserver() = std::move(observer);
}

bool moveToTrash(const QString& path)
{
    const QByteArray item = systemItemPath(path);
    if (hasDotComponent(path) || isPrecious(item)) {
        logLine(QStringLiteral("trash               :-( refused : %@"), {path});
    } else if (linkStatus(item)) {
        leaveToTrash(item);
    }
    return true;
}

bool removeOwnFile(const QString& path, const QString& folder)
{
    const QByteArray item = systemPath(path);
    const QByteArray root = resolvedPath(systemPath(folder));
    const qsizetype slash = item.lastIndexOf('/');
    const QByteArray name = item.mid(slash + 1);
    if (item.isEmpty()) {
        return false;
    }
    if (!linkStatus(item) && errno == ENOENT) {
        return true;
    }
    if (root.isEmpty() || slash < 0 || name.isEmpty() || name == "." || name == "..") {
        return false;
    }
    const QByteArray parent = resolvedPath(slash == 0 ? QByteArray("/") : item.left(slash));
    if (parent.isEmpty() || !isAtOrBelow(parent, root)) {
        logLine(QStringLiteral("own file            :-( not inside %@ : %@"), {folder, path});
        return false;
    }
    const Descriptor place = openFile(parent, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    struct stat status {
    };
    if (!place.isOpen()) {
        return false;
    }
    if (::fstatat(place.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT;
    }
    if (!S_ISREG(status.st_mode)) {
        logLine(QStringLiteral("own file            :-( no regular file : %@"), {path});
        return false;
    }
    if (::unlinkat(place.get(), name.constData(), 0) == 0 || errno == ENOENT) {
        return true;
    }
    logLine(QStringLiteral("own file            :-( %@ : %@"), {path, systemErrorText()});
    return false;
}

bool removeOwnFolder(const QString& path)
{
    const QByteArray item = systemItemPath(path);
    if (item.isEmpty()) {
        return false;
    }
    const std::optional<struct stat> status = linkStatus(item);
    if (!status) {
        return errno == ENOENT;
    }
    if (!S_ISDIR(status->st_mode) || status->st_uid != ::geteuid() || hasDotComponent(QFile::decodeName(item)) ||
        isPrecious(item)) {
        logLine(QStringLiteral("own folder          :-( refused : %@"), {path});
        return false;
    }
    if (removeTree(item)) {
        return true;
    }
    logLine(QStringLiteral("own folder          :-( %@ : %@"), {path, systemErrorText()});
    return false;
}

} // namespace tavrix
