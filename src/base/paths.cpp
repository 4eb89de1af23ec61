#include "base/paths.h"

#include <QFile>
#include <QStringList>

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace tavrix
{

namespace
{

constexpr size_t largestEntry = size_t{1} << 20;

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

// Home folder of the named user, of this process's user for an empty name; nothing when there is none.
QString userDatabaseHome(const QByteArray& name)
{
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> buffer(1024);
    int result = ERANGE;
    while (result == ERANGE && buffer.size() <= largestEntry) {
        buffer.resize(buffer.size() * 2);
        result = name.isEmpty() ? getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)
                                : getpwnam_r(name.constData(), &entry, buffer.data(), buffer.size(), &found);
    }
    return result == 0 && found && found->pw_dir[0] == '/' ? normalized(QFile::decodeName(found->pw_dir)) : QString();
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
    const QString home = user.isEmpty() ? homeFolder() : userDatabaseHome(nativePath(user));
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
    const QByteArray home = qgetenv("HOME");
    if (home.startsWith('/')) {
        return normalized(QFile::decodeName(home));
    }
    const QString entry = userDatabaseHome(QByteArray());
    return entry.isNull() ? QStringLiteral("/") : entry;
}

QByteArray nativePath(const QString& path)
{
    return path.contains(QChar(u'\0')) ? QByteArray() : QFile::encodeName(path);
}

} // namespace tavrix
