// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/bundle/bundle.h"
#include "support/temphome.h"

#include <QFile>

#include <gtest/gtest.h>

namespace tavrix::test
{

// A resource folder of its own with tools that are shell scripts; the program's own one is back at the end.
class FakeResources
{
public:
    explicit FakeResources(const QString& name = QStringLiteral("resources"))
        : previous_(resourcePath()), root_(folder_.makeFolder(name))
    {
        setResourcePath(root_);
    }
    ~FakeResources() { setResourcePath(previous_); }
    FakeResources(const FakeResources&) = delete;
    FakeResources& operator=(const FakeResources&) = delete;

    // Makes the tool: a script with the given lines, its arguments kept one a line in "<tool>.args".
    void makeTool(const QString& name, const QByteArray& script) const
    {
        const QString tool = root_ + QStringLiteral("/tools/") + name;
        const QByteArray keep = "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$0.args\"\n";
        folder_.makeFile(tool.mid(folder_.path().size() + 1), keep + script);
        EXPECT_TRUE(
            QFile::setPermissions(tool, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    }
    [[nodiscard]] QStringList toolArguments(const QString& name) const
    {
        const auto bytes = readBytes(root_ + QStringLiteral("/tools/") + name + QStringLiteral(".args"));
        return bytes ? QString::fromUtf8(*bytes).split(u'\n').mid(0, bytes->count('\n')) : QStringList();
    }
    [[nodiscard]] const QString& root() const { return root_; }
    [[nodiscard]] const TempFolder& folder() const { return folder_; }

private:
    TempFolder folder_;
    QString previous_;
    QString root_;
};

} // namespace tavrix::test
