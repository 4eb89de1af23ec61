// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filelisting.h"

#include "base/files/posixfile.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "sys/foldernames.h"

#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <vector>

namespace tavrix
{
namespace
{

// As the file system has them, in no order. Not by QDir: from Qt 6.8 on it stops at a name that is no UTF-8, and would
// hide the clips behind it.
std::vector<std::string> rawNames(const QString& folder)
{
    const QByteArray path = systemPath(folder);
    if (path.isEmpty()) {
        return {};
    }
    const Descriptor opened = openFileAt(AT_FDCWD, path.constData(), O_RDONLY | O_DIRECTORY);
    return opened.isOpen() ? namesIn(opened).value_or(std::vector<std::string>()) : std::vector<std::string>();
}

// Sorted, because the order in which a file system returns its entries is arbitrary and "the first entry" must not be.
QStringList sortedNames(const QString& folder)
{
    QStringList names;
    for (const std::string& name : rawNames(folder)) {
        if (const QString decoded = decodedUtf8(QByteArray::fromStdString(name)); !decoded.isNull()) {
            names << decoded;
        }
    }
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int order = QString::compare(a, b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

bool isRealFolder(const QString& path)
{
    const std::optional<struct stat> status = linkStatus(systemItemPath(path));
    return status && S_ISDIR(status->st_mode);
}

bool isLinkToFolder(const QString& path)
{
    const QByteArray bytes = systemItemPath(path);
    const std::optional<struct stat> own = linkStatus(bytes);
    const std::optional<struct stat> target = followedStatus(bytes);
    return own && target && S_ISLNK(own->st_mode) && S_ISDIR(target->st_mode);
}

QString withTrailingSlash(const QString& folder)
{
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

void appendItemsBelow(const QString& folder, const QString& shownFolder, QStringList& items)
{
    const QStringList names = sortedNames(folder);
    for (const QString& name : names) {
        const QString path = stringByAppendingPathComponent(folder, name);
        const QString shown = stringByAppendingPathComponent(shownFolder, name);
        items.append(shown);
        if (isRealFolder(path)) {
            appendItemsBelow(path, shown, items);
        }
    }
}

} // namespace

std::optional<QStringList> lsCocoa(const QString& folder)
{
    if (folder.isNull()) {
        return std::nullopt;
    }
    const QString base = withTrailingSlash(stringByExpandingTildeInPath(folder));
    QStringList paths;
    const QStringList names = sortedNames(base);
    paths.reserve(names.size());
    for (const QString& name : names) {
        paths.append(base + name);
    }
    logLine(QStringLiteral("lsCocoa             - fin : %d items : %@"), {static_cast<int>(paths.size()), paths});
    return paths;
}

QStringList lsCocoaRecursive(const QString& folder)
{
    QStringList items;
    if (!folder.isNull()) {
        const QString base = stringByExpandingTildeInPath(folder);
        appendItemsBelow(base, base, items);
    }
    return items;
}

QStringList unspeakableEntries(const QString& folder)
{
    QStringList entries;
    for (const std::string& each : rawNames(folder)) {
        const QByteArray name = QByteArray::fromStdString(each);
        if (decodedUtf8(name).isNull()) {
            entries.append(stringByAppendingPathComponent(folder, QString::fromUtf8(name)));
        }
    }
    entries.sort();
    return entries;
}

QStringList lsGrepCocoa(const QString& folder, const QString& extension)
{
    QStringList selected;
    const QStringList entries = lsCocoa(folder).value_or(QStringList());
    for (const QString& entry : entries) {
        if (pathExtension(entry).compare(extension, Qt::CaseInsensitive) == 0) {
            selected.append(entry);
        }
    }
    return selected;
}

QStringList findCocoa(const QString& folder, const QString& pattern, const QString& caseFlag)
{
    const bool ignoreCase = caseFlag == QLatin1String("i");
    const QString wanted = ignoreCase ? pattern.toLower() : pattern;
    QStringList work = lsCocoa(folder).value_or(QStringList());
    QStringList found;
    // Folders are replaced by their children at the end of the list: the result is ordered level by level. A link to a
    // folder is not entered, since one that points upwards would never end.
    for (qsizetype index = 0; index < work.size(); ++index) {
        const QString path = work.at(index);
        if (isRealFolder(path)) {
            const QStringList names = sortedNames(path);
            for (const QString& name : names) {
                work.append(path + u'/' + name);
            }
        } else if (!isLinkToFolder(path)) {
            if (wanted.isEmpty() || containsText(ignoreCase ? path.toLower() : path, wanted)) {
                found.append(path);
            }
        }
    }
    return found;
}

QString fileFromFolder(const QString& folder, const QString& extension)
{
    if (!extension.isNull()) {
        const QStringList entries = lsCocoa(folder).value_or(QStringList());
        for (const QString& entry : entries) {
            if (pathExtension(entry) == extension) {
                return entry;
            }
        }
    }
    return QStringLiteral("");
}

QString fichier_basename(const QString& path)
{
    return path.isNull() ? QStringLiteral("") : lastPathComponent(stringByExpandingTildeInPath(path));
}

QString fichier_nom(const QString& path)
{
    if (path.isNull()) {
        return {};
    }
    return stringByDeletingPathExtension(lastPathComponent(EyetvBundle(stringByExpandingTildeInPath(path))));
}

QString fichier_dirname(const QString& path)
{
    if (path.isNull()) {
        return QStringLiteral("");
    }
    const QString marker = QStringLiteral(".iMovieProject/Shared Movies/iDVD");
    QString shortened = stringByExpandingTildeInPath(path);
    // The cut is counted from the end of the path, wherever the marker stands.
    if (containsText(shortened, marker)) {
        shortened.chop(marker.size());
    }
    return withTrailingSlash(stringByDeletingLastPathComponent(EyetvBundle(shortened)));
}

QString pathByResolvingAlias(const QString& path)
{
    const QByteArray bytes = systemItemPath(path);
    const std::optional<struct stat> status = linkStatus(bytes);
    if (!status || !S_ISLNK(status->st_mode)) {
        return path;
    }
    const QByteArray target = resolvedPath(bytes);
    return target.isEmpty() ? path : QFile::decodeName(target);
}

QString EyetvBundle(const QString& path)
{
    if (path.isNull()) {
        return {};
    }
    logDebug(QStringLiteral("EyetvBundle         - debut - %@"), {path});
    const QString parent = stringByDeletingLastPathComponent(path);
    const bool inside = containsText(path, QStringLiteral(".eyetv/")) && parent.endsWith(QLatin1String(".eyetv"));
    QString bundle = inside ? parent : path;
    logDebug(QStringLiteral("EyetvBundle         - fin   - %@"), {bundle});
    return bundle;
}

} // namespace tavrix
