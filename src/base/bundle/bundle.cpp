// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"

#include "base/bundle/propertylist.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "sys/secondpass.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace tavrix
{

namespace
{

constexpr qint64 infoSizeLimit = qint64{1} << 20;

struct Bundle {
    QString resources;
    std::optional<QVariantMap> info;
};

Bundle& bundle()
{
    static Bundle instance;
    return instance;
}

// Asked also before there is an application object, which Qt would refuse to answer.
QString programFolder()
{
    if (QCoreApplication::instance()) {
        return QCoreApplication::applicationDirPath();
    }
    return stringByDeletingLastPathComponent(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")));
}

QString foundResourcePath()
{
    const QString beside = QDir::cleanPath(programFolder() + QStringLiteral("/../resources"));
    const QString installed = QDir::cleanPath(programFolder() + QStringLiteral("/../lib/tavrix"));
    return !QFileInfo(beside).isDir() && QFileInfo(installed).isDir() ? installed : beside;
}

QVariantMap readInfo()
{
    const QString path = resourcePath() + QStringLiteral("/Info.plist");
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        logLine(QStringLiteral("Info.plist          :-( not readable %@"), {path});
        return {};
    }
    const std::optional<QVariant> list = propertyListFromBytes(file.read(infoSizeLimit));
    if (!list || list->typeId() != QMetaType::QVariantMap) {
        logLine(QStringLiteral("Info.plist          :-( no dictionary %@"), {path});
        return {};
    }
    return list->toMap();
}

const QVariantMap& info()
{
    if (!bundle().info) {
        bundle().info = readInfo();
        setLogName(bundleName());
    }
    return *bundle().info;
}

} // namespace

QString resourcePath()
{
    if (bundle().resources.isNull()) {
        bundle().resources = foundResourcePath();
    }
    return bundle().resources;
}

void setResourcePath(const QString& folder)
{
    bundle().resources = folder.isNull() ? QString() : QDir::cleanPath(folder);
    bundle().info.reset();
}

QVariant infoValue(const QString& key)
{
    return info().value(key);
}

QString bundleName()
{
    const QString name = infoValue(QString::fromLatin1(secondpass::nameKey)).toString();
    return name.isEmpty() ? QStringLiteral("Tavrix") : name;
}

QString bundleIdentifier()
{
    return infoValue(QString::fromLatin1(secondpass::identifierKey)).toString();
}

QString bundleVersion()
{
    return infoValue(QStringLiteral("CFBundleShortVersionString")).toString();
}

QStringList documentTypeExtensions()
{
    const QVariantList types = infoValue(QStringLiteral("CFBundleDocumentTypes")).toList();
    return types.isEmpty() ? QStringList()
                           : types.first().toMap().value(QStringLiteral("CFBundleTypeExtensions")).toStringList();
}

QString pathForResource(const QString& name, const QString& type)
{
    const QString file = type.isEmpty() ? name : name + u'.' + type;
    if (name.isEmpty() || file.split(u'/').contains(QLatin1String(".."))) {
        return {};
    }
    const QStringList candidates = {stringByAppendingPathComponent(resourcePath(), file), toolPath(file)};
    for (const QString& candidate : candidates) {
        if (QFileInfo(candidate).isFile()) {
            return candidate;
        }
    }
    return {};
}

QString toolsFolder()
{
    return stringByAppendingPathComponent(resourcePath(), QStringLiteral("tools"));
}

QString toolPath(const QString& name)
{
    return stringByAppendingPathComponent(toolsFolder(), name);
}

} // namespace tavrix
