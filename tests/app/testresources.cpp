// SPDX-License-Identifier: GPL-3.0-or-later
#include "testresources.h"

#include "base/bundle/bundle.h"
#include "testpaths.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace tavrix::test
{

TestResources::TestResources(const QString& name) : previous_(resourcePath()), root_(folder_.makeFolder(name))
{
    const QString source = QStringLiteral(TAVRIX_BUILD_RESOURCES) + u'/';
    EXPECT_TRUE(QDir().mkpath(root_ + QStringLiteral("/tools")));
    EXPECT_TRUE(QFile::copy(source + QStringLiteral("Info.plist"), root_ + QStringLiteral("/Info.plist")));
    for (const char* language : {"en.lproj", "fr.lproj"}) {
        const QString tables = QString::fromLatin1(language);
        EXPECT_TRUE(QFile::link(source + tables, root_ + u'/' + tables));
    }
    setResourcePath(root_);
}

TestResources::~TestResources()
{
    setResourcePath(previous_);
}

void TestResources::changeInfo(const QByteArray& from, const QByteArray& to) const
{
    const QString path = root_ + QStringLiteral("/Info.plist");
    QByteArray info = readBytes(path).value_or(QByteArray());
    EXPECT_TRUE(info.contains(from));
    info.replace(from, to);
    QFile::remove(path);
    EXPECT_TRUE(writeBytes(path, info));
    setResourcePath(root_);
}

QString TestResources::makeTool(const QString& name, const QByteArray& script) const
{
    QString tool = root_ + QStringLiteral("/tools/") + name;
    EXPECT_TRUE(writeBytes(tool, "#!/bin/sh\n" + script));
    EXPECT_TRUE(QFile::setPermissions(tool, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    return tool;
}

} // namespace tavrix::test
