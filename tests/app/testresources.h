// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/temphome.h"

namespace tavrix::test
{

// A resource folder of its own with the program's texts and no tools; the program's own one is back at the end.
class TestResources
{
public:
    explicit TestResources(const QString& name = QStringLiteral("resources"));
    ~TestResources();
    TestResources(const TestResources&) = delete;
    TestResources& operator=(const TestResources&) = delete;

    // Replaces a text in the property list; the texts must differ.
    void changeInfo(const QByteArray& from, const QByteArray& to) const;
    // Makes the tool, a shell script with these lines; answers its path.
    QString makeTool(const QString& name, const QByteArray& script) const;
    [[nodiscard]] const QString& root() const { return root_; }

private:
    TempFolder folder_;
    QString previous_;
    QString root_;
};

} // namespace tavrix::test
