// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filedelete.h"
#include "base/text/paths.h"
#include "platform/desktop.h"
#include "platform/network.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support/waituntil.h"

#include <QFile>
#include <QStandardPaths>

#include <sys/stat.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class FakeDesktop : public DesktopServices
{
public:
    bool openUrl(const QUrl& url) override
    {
        calls << QStringLiteral("url ") + url.toString(QUrl::FullyEncoded);
        return answer;
    }
    bool openFileWith(const QString& path, const QString& application) override
    {
        calls << QStringLiteral("with ") + application + QLatin1Char(' ') + path;
        return answer;
    }
    bool reveal(const QString& path) override
    {
        calls << QStringLiteral("reveal ") + path;
        return answer;
    }
    void noteFileSystemChanged(const QString& path) override { calls << QStringLiteral("changed ") + path; }

    QStringList calls;
    bool answer = true;
};

class Desktop : public testing::Test
{
protected:
    Desktop() { setDesktopServices(&fake); }
    ~Desktop() override { setDesktopServices(nullptr); }

    FakeDesktop fake;
};

TEST_F(Desktop, RevealsAnyPathButNothing)
{
    EXPECT_TRUE(revealInFinder(QStringLiteral("/a b/c")));
    EXPECT_TRUE(revealInFinder(QStringLiteral("~/x")));
    EXPECT_FALSE(revealInFinder(QString()));
    fake.answer = false;
    EXPECT_TRUE(revealInFinder(QStringLiteral("/d")));
    EXPECT_TEXTS(fake.calls, QStringList({QStringLiteral("reveal /a b/c"),
                                          QStringLiteral("reveal ") + homeFolder() + QStringLiteral("/x"),
                                          QStringLiteral("reveal /d")}));
}

TEST_F(Desktop, OpensWithTheDefaultOrTheNamedApplication)
{
    EXPECT_TRUE(openWith(QStringLiteral("/a b#?.mov"), QStringLiteral("")));
    EXPECT_TRUE(openWith(QStringLiteral("/c.mov"), QStringLiteral("player")));
    EXPECT_TRUE(openWith(QString(), QStringLiteral("player")));
    EXPECT_TEXTS(fake.calls,
                 QStringList({QStringLiteral("url file:///a%20b%23%3F.mov"), QStringLiteral("with player /c.mov")}));
}

TEST_F(Desktop, OpensAFolderAndLogsIt)
{
    const LogCapture log;
    openFileFolder(QStringLiteral("/tmp/a"));
    openFileFolder(QString());
    openFileFolder(QStringLiteral(""));
    EXPECT_TEXTS(fake.calls, QStringList({QStringLiteral("url file:///tmp/a")}));
    EXPECT_TEXTS(log.lines(), QStringList({QStringLiteral("pathStr : /tmp/a")}));
}

TEST_F(Desktop, IsToldOfEveryGuardedDelete)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("clip"));
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_FALSE(rmCocoa(QStringLiteral("/etc")));
    EXPECT_TEXTS(fake.calls, QStringList({QStringLiteral("changed ") + file, QStringLiteral("changed ") + file}));
}

TEST_F(Desktop, OpensOnlyWebAddresses)
{
    openLocation(QStringLiteral("http://example.org/a"));
    openLocation(QStringLiteral("https://example.org/b"));
    for (const char* other : {"file:///etc/passwd", "-x", "javascript:x", "", "http:", "ftp://example.org"}) {
        openLocation(text(other));
    }
    openLocation(QString());
    EXPECT_TEXTS(fake.calls, QStringList({QStringLiteral("url http://example.org/a"),
                                          QStringLiteral("url https://example.org/b")}));
}

// The real services with an opener that writes down what it is given.
class SystemDesktop : public testing::Test
{
protected:
    SystemDesktop()
    {
        const QString script = folder.makeFile(
            QStringLiteral("opener"), "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"$0.tmp\" && mv \"$0.tmp\" \"$0.out\"\n");
        chmod(QFile::encodeName(script).constData(), 0700);
        services = makeSystemDesktopServices(script);
    }

    QString given()
    {
        const QString out = folder.path(QStringLiteral("opener.out"));
        if (!waitUntil([&] { return itemExists(out); })) {
            return {};
        }
        QString content = QString::fromUtf8(readBytes(out).value_or(QByteArray()));
        QFile::remove(out);
        return content;
    }

    const TempFolder folder;
    std::unique_ptr<DesktopServices> services;
};

TEST_F(SystemDesktop, HandsAddressesToTheOpener)
{
    EXPECT_TRUE(services->openUrl(QUrl::fromLocalFile(QStringLiteral("/a b/é;$(x)"))));
    EXPECT_TEXT(given(), QStringLiteral("file:///a%20b/%C3%A9;$(x)\n"));
    EXPECT_TRUE(services->openUrl(QUrl(QStringLiteral("mailto:a@example.org?subject=x"))));
    EXPECT_TEXT(given(), QStringLiteral("mailto:a@example.org?subject=x\n"));
}

TEST_F(SystemDesktop, RevealsByOpeningTheFolder)
{
    EXPECT_TRUE(services->reveal(QStringLiteral("/a b/clip.mts")));
    EXPECT_TEXT(given(), QStringLiteral("file:///a%20b\n"));
    EXPECT_TRUE(services->reveal(QStringLiteral("/clip.mts")));
    EXPECT_TEXT(given(), QStringLiteral("file:///\n"));
}

TEST_F(SystemDesktop, OpensWithANamedProgram)
{
    EXPECT_TRUE(services->openFileWith(QStringLiteral("/-a b"), folder.path(QStringLiteral("opener"))));
    EXPECT_TEXT(given(), QStringLiteral("/-a b\n"));
}

// Nothing was said where no file manager was installed.
TEST_F(SystemDesktop, WhatNoProgramOpensIsTold)
{
    QStringList told;
    setUnopenedListener([&told](const QUrl& url) { told << url.toString(); });
    const QString failing = folder.makeFile(QStringLiteral("nothing"), "#!/bin/sh\nexit 3\n");
    const QString working = folder.makeFile(QStringLiteral("works"), "#!/bin/sh\nexit 0\n");
    for (const QString& script : {failing, working}) {
        chmod(QFile::encodeName(script).constData(), 0700);
    }
    const LogCapture log;
    EXPECT_TRUE(makeSystemDesktopServices(working)->openUrl(QUrl(QStringLiteral("http://good"))));
    EXPECT_TRUE(makeSystemDesktopServices(failing)->reveal(QStringLiteral("/a b/clip.mts")));
    EXPECT_TRUE(waitUntil([&told] { return !told.isEmpty(); }));
    EXPECT_FALSE(
        makeSystemDesktopServices(QStringLiteral("/nosuch/opener"))->openUrl(QUrl(QStringLiteral("http://x"))));
    setUnopenedListener({});
    EXPECT_TEXTS(told, QStringList({QStringLiteral("file:///a b"), QStringLiteral("http://x")}));
    EXPECT_EQ(log.lines().size(), 2);
}

TEST_F(SystemDesktop, FailuresAreReported)
{
    const LogCapture log;
    EXPECT_FALSE(services->openUrl(QUrl()));
    EXPECT_FALSE(services->openUrl(QUrl(QStringLiteral("-option"))));
    EXPECT_FALSE(services->openFileWith(QStringLiteral("/a"), QStringLiteral("nosuchapplication")));
    EXPECT_FALSE(
        makeSystemDesktopServices(QStringLiteral("/nosuch/opener"))->openUrl(QUrl(QStringLiteral("http://x"))));
    EXPECT_EQ(log.lines().size(), 4);
}

} // namespace
