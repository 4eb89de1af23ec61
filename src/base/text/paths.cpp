// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/paths.h"

#include "sys/home.h"

#include <QFile>
#include <QStringList>

#include <string>
#include <unistd.h>

namespace tavrix
{

namespace
{

QString normalized(const QString& path)
{
    QString result;
    result.reserve(path.size());
    for (const QChar character : path) {
        if (character != u'/' || !result.endsWith(u'/')) {
            result.append(character);
        }
    }
    if (result.size() > 1 && result.endsWith(u'/')) {
        result.chop(1);
    }
    return result;
}

// Position of the extension's dot within a component, -1 when it has none.
qsizetype extensionDot(const QString& component)
{
    const qsizetype dot = component.lastIndexOf(u'.');
    return dot <= 0 || component == QLatin1String("..") ? -1 : dot;
}

// Nothing when the database knows no such user.
QString knownHome(const std::string& home)
{
    return home.empty() ? QString() : normalized(QFile::decodeName(QByteArray::fromStdString(home)));
}

QStringList withoutDotComponents(const QString& path, bool absolute)
{
    QStringList kept;
    const QStringList components = path.split(u'/', Qt::SkipEmptyParts);
    for (const QString& component : components) {
        const bool leading = kept.isEmpty() && !absolute;
        if (component == QLatin1String(".") && !leading) {
            continue;
        }
        if (component == QLatin1String("..") && absolute) {
            if (!kept.isEmpty()) {
                kept.removeLast();
            }
            continue;
        }
        kept.append(component);
    }
    return kept;
}

} // namespace

QString lastPathComponent(const QString& path)
{
    const QString clean = normalized(path);
    if (path.isEmpty() || clean == QLatin1String("/")) {
        return path.isEmpty() ? path : clean;
    }
    return clean.mid(clean.lastIndexOf(u'/') + 1);
}

QString stringByDeletingLastPathComponent(const QString& path)
{
    if (path.isEmpty()) {
        return path;
    }
    const QString clean = normalized(path);
    const qsizetype slash = clean.lastIndexOf(u'/');
    if (slash < 0) {
        return QStringLiteral("");
    }
    return slash == 0 ? QStringLiteral("/") : clean.left(slash);
}

QString pathExtension(const QString& path)
{
    if (path.isEmpty()) {
        return path;
    }
    const QString component = lastPathComponent(path);
    const qsizetype dot = extensionDot(component);
    return dot < 0 || dot + 1 == component.size() ? QStringLiteral("") : component.mid(dot + 1);
}

QString stringByDeletingPathExtension(const QString& path)
{
    if (path.isEmpty()) {
        return path;
    }
    const QString clean = normalized(path);
    const QString component = lastPathComponent(clean);
    const qsizetype dot = extensionDot(component);
    return dot < 0 ? clean : clean.left(clean.size() - component.size() + dot);
}

QString stringByAppendingPathComponent(const QString& path, const QString& component)
{
    if (path.isNull() || component.isEmpty()) {
        return path;
    }
    if (path.isEmpty()) {
        return component;
    }
    qsizetype start = 0;
    while (start < component.size() && component[start] == u'/') {
        ++start;
    }
    qsizetype end = path.size();
    while (end > 0 && path[end - 1] == u'/') {
        --end;
    }
    return start == component.size() ? path : path.left(end) + u'/' + component.mid(start);
}

QString stringByExpandingTildeInPath(const QString& path)
{
    if (!path.startsWith(u'~')) {
        return path;
    }
    const qsizetype slash = path.indexOf(u'/');
    const QString user = slash < 0 ? path.mid(1) : path.mid(1, slash - 1);
    const QString home = user.isEmpty() ? homeFolder() : knownHome(homeOfUser(nativePath(user).toStdString()));
    if (home.isNull()) {
        return path;
    }
    return normalized(slash < 0 ? home : home + path.mid(slash));
}

QString stringByStandardizingPath(const QString& path)
{
    if (path.isEmpty()) {
        return path;
    }
    const QString expanded = stringByExpandingTildeInPath(path);
    const bool absolute = expanded.startsWith(u'/');
    QString joined = withoutDotComponents(expanded, absolute).join(u'/');
    if (!absolute) {
        return joined;
    }
    QString result = u'/' + joined;
    const QString prefix = QStringLiteral("/private");
    if (result.startsWith(prefix + u'/')) {
        QString rest = result.mid(prefix.size());
        if (access(nativePath(rest).constData(), F_OK) == 0) {
            return rest;
        }
    }
    return result;
}

QString homeFolder()
{
    const QString home = knownHome(ownHome());
    return home.isNull() ? QStringLiteral("/") : home;
}

QByteArray nativePath(const QString& path)
{
    return path.contains(QChar(u'\0')) ? QByteArray() : QFile::encodeName(path);
}

} // namespace tavrix
