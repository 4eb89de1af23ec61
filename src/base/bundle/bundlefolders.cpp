// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"

#include "base/text/log.h"
#include "base/text/paths.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

QString libraryFolder(const QString& kind)
{
    return stringByExpandingTildeInPath(QStringLiteral("~/Library/") + kind + u'/' + bundleName());
}

bool isOwnFolder(const QString& path, mode_t forbiddenBits)
{
    struct stat status = {};
    return lstat(nativePath(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & forbiddenBits) == 0;
}

// $TMPDIR without its trailing "/", which would make lstat follow a link. Nothing when it is not the user's own: in a
// folder others may write to, they could put a link under the name of our working folder. Nothing either when it cannot
// be written to: every clip would then look unreadable.
QString ownTmpdir()
{
    QString folder = QFile::decodeName(qgetenv("TMPDIR"));
    while (folder.size() > 1 && folder.endsWith(u'/')) {
        folder.chop(1);
    }
    const bool usable = folder.startsWith(u'/') && isOwnFolder(folder, S_IWGRP | S_IWOTH) &&
                        ::access(nativePath(folder).constData(), W_OK | X_OK) == 0;
    return usable ? folder : QString();
}

} // namespace

QString cachesFolder()
{
    return libraryFolder(QStringLiteral("Caches"));
}

QString supportFolder()
{
    return libraryFolder(QStringLiteral("Application Support"));
}

QString logsFolder()
{
    return libraryFolder(QStringLiteral("Logs"));
}

bool ensurePrivateFolder(const QString& path)
{
    if (mkdir(nativePath(path).constData(), S_IRWXU) != 0 && errno != EEXIST) {
        logLine(QStringLiteral("private folder      :-( %@ %@"), {path, std::strerror(errno)});
        return false;
    }
    if (!isOwnFolder(path, S_IRWXG | S_IRWXO)) {
        logLine(QStringLiteral("private folder      :-( not a folder of the user's own, %@"), {path});
        return false;
    }
    return true;
}

QString systemTemporaryFolder()
{
    const QString own = ownTmpdir();
    if (!own.isNull()) {
        return own == QLatin1String("/") ? own : own + u'/';
    }
    const QString folder = QStringLiteral("/tmp/tavrix-") + QString::number(geteuid());
    return ensurePrivateFolder(folder) ? folder + u'/' : QString();
}

} // namespace tavrix
