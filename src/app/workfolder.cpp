// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/workfolder.h"

#include "app/privatefiles.h"
#include "base/bundle/bundle.h"
#include "base/files/filedelete.h"
#include "base/files/fileops.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "probe/batchtexts.h"
#include "sys/descriptor.h"
#include "sys/errortext.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace tavrix
{

namespace
{

QString systemReason()
{
    return QString::fromStdString(errorText(errno));
}

QString obstacle(const QString& path, const QString& reason)
{
    return formatText(QStringLiteral("%@: %@"), {path, reason});
}

// Free space says nothing of quotas and limits: what counts is a file that was written.
QString trialTrouble(const QString& folder)
{
    const QByteArray path = nativePath(folder + QStringLiteral("trial"));
    const Descriptor file = openFile(path.constData(), O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    if (!file.isOpen()) {
        return systemReason();
    }
    const int failure = ::posix_fallocate(file.get(), 0, workFolderNeeds);
    ::unlink(path.constData());
    // Where the file system cannot reserve, its free space has been asked already.
    return failure == 0 || failure == EOPNOTSUPP || failure == EINVAL ? QString()
                                                                      : QString::fromStdString(errorText(failure));
}

// A folder of that name is emptied; a link or a file is a stranger's and stays.
QString takeFolder(const QString& folder)
{
    struct stat status = {};
    const QByteArray native = nativePath(folder.chopped(1));
    if (::lstat(native.constData(), &status) == 0) {
        if (!S_ISDIR(status.st_mode)) {
            return batchText("Tmp_noFolder");
        }
        if (status.st_uid != ::geteuid()) {
            return batchText("Tmp_anotherUsers");
        }
        if (!removeOwnFolder(folder)) {
            return systemReason();
        }
    }
    if (::mkdir(native.constData(), S_IRWXU) != 0) {
        return systemReason();
    }
    QString trouble = workFolderTrouble(folder);
    if (!trouble.isNull()) {
        ::rmdir(native.constData());
    }
    return trouble;
}

// A fresh name in a folder that is everybody's.
QString freshFolder(const QString& below)
{
    QByteArray name = nativePath(below) + "/tavrix-XXXXXX";
    return ::mkdtemp(name.data()) == nullptr ? QString() : QString::fromUtf8(name) + u'/';
}

QStringList ownPlaces(const QString& base, bool shared)
{
    const QString numbered =
        formatText(QStringLiteral("%@-%d/"), {bundleName(), qint64(QCoreApplication::applicationPid())});
    QStringList places;
    if (!base.isNull()) {
        if (!shared) {
            places << base + bundleName() + u'/';
        }
        places << base + numbered;
    }
    const QString runtime = QString::fromUtf8(qgetenv("XDG_RUNTIME_DIR"));
    if (runtime.startsWith(u'/')) {
        places << runtime + u'/' + numbered;
    }
    places << cachesFolder() + u'/' + numbered;
    return places;
}

} // namespace

QString workFolderTrouble(const QString& folder)
{
    struct statvfs space = {};
    if (::statvfs(nativePath(folder).constData(), &space) != 0) {
        return systemReason();
    }
    if (static_cast<qint64>(space.f_bavail) * static_cast<qint64>(space.f_frsize) < workFolderNeeds) {
        return QString::fromStdString(errorText(ENOSPC));
    }
    return trialTrouble(folder);
}

WorkFolder makeWorkFolder(const QString& base, bool shared)
{
    WorkFolder work;
    if (base.isNull()) {
        work.obstacles << obstacle(formatText(QStringLiteral("/tmp/tavrix-%d"), {qint64(::geteuid())}),
                                   batchText("Tmp_anotherUsers"));
    }
    for (const QString& place : ownPlaces(base, shared)) {
        const QString trouble = takeFolder(place);
        if (trouble.isNull()) {
            work.path = place;
            return work;
        }
        work.obstacles << obstacle(place, trouble);
    }
    for (const QString& below : {QStringLiteral("/tmp"), QStringLiteral("/var/tmp")}) {
        const QString folder = freshFolder(below);
        const QString trouble = folder.isNull() ? systemReason() : workFolderTrouble(folder);
        if (trouble.isNull()) {
            work.path = folder;
            return work;
        }
        work.obstacles << obstacle(below, trouble);
        if (!folder.isNull()) {
            ::rmdir(nativePath(folder.chopped(1)).constData());
        }
    }
    return work;
}

} // namespace tavrix
