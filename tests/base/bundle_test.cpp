// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"

#include "base/store/settings.h"
#include "base/text/log.h"
#include "support/ordinaryuser.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

using test::text;

const char infoText[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>CFBundleName</key><string>Other Name</string>
<key>CFBundleIdentifier</key><string>org.example.other</string>
<key>CFBundleShortVersionString</key><string>2.5</string>
<key>CFBundleDocumentTypes</key><array>
<dict><key>CFBundleTypeExtensions</key><array><string>mts</string><string>mov</string></array></dict>
<dict><key>CFBundleTypeExtensions</key><array><string>txt</string></array></dict>
</array>
</dict></plist>
)";

class Bundle : public testing::Test
{
protected:
    Bundle() { setResourcePath(folder.path()); }
    ~Bundle() override { setResourcePath(QString()); }

    void useInfo(const QByteArray& bytes)
    {
        folder.makeFile(text("Info.plist"), bytes);
        setResourcePath(folder.path());
    }

    test::TempFolder folder;
};

TEST_F(Bundle, ReadsTheInformationList)
{
    useInfo(infoText);
    EXPECT_TEXT(bundleName(), text("Other Name"));
    EXPECT_TEXT(bundleIdentifier(), text("org.example.other"));
    EXPECT_TEXT(bundleVersion(), text("2.5"));
    EXPECT_TEXTS(documentTypeExtensions(), (QStringList{text("mts"), text("mov")}));
    EXPECT_FALSE(infoValue(text("Missing")).isValid());
    EXPECT_TEXT(getTMPFOLDER(), text("/private/tmp/Other Name"));
}

TEST_F(Bundle, AnUnreadableListHasDefaultsAndIsLoggedOnce)
{
    for (const QByteArray& bytes : {QByteArray("not a list"), QByteArray("<plist><string>a</string></plist>")}) {
        useInfo(bytes);
        const test::LogCapture log;
        EXPECT_TEXT(bundleName(), text("Tavrix"));
        EXPECT_TEXT(bundleIdentifier(), QString());
        EXPECT_TRUE(documentTypeExtensions().isEmpty());
        EXPECT_EQ(log.lines().filter(text("no dictionary")).size(), 1) << log.lines().join(u'\n').toStdString();
    }
}

TEST_F(Bundle, AMissingListHasDefaultsAndIsLoggedOnce)
{
    const test::LogCapture log;
    EXPECT_TEXT(bundleName(), text("Tavrix"));
    EXPECT_TEXT(bundleVersion(), QString());
    EXPECT_EQ(log.lines().size(), 1);
}

TEST_F(Bundle, FindsResourcesByNameAndType)
{
    const QString tool = folder.makeFile(text("tools/ffmpeg"));
    const QString image = folder.makeFile(text("dnd.png"));
    const QString both = folder.makeFile(text("both"));
    folder.makeFile(text("tools/both"));
    folder.makeFolder(text("presets"));
    folder.makeFile(text("../outside"));
    EXPECT_TEXT(pathForResource(text("ffmpeg"), text("")), tool);
    EXPECT_TEXT(pathForResource(text("ffmpeg"), QString()), tool);
    EXPECT_TEXT(pathForResource(text("dnd"), text("png")), image);
    EXPECT_TEXT(pathForResource(text("both"), QString()), both);
    EXPECT_TEXT(pathForResource(text("dnd"), text("jpg")), QString());
    EXPECT_TEXT(pathForResource(text("presets"), QString()), QString());
    EXPECT_TEXT(pathForResource(text(""), text("")), QString());
    EXPECT_TEXT(pathForResource(QString(), text("png")), QString());
    EXPECT_TEXT(pathForResource(text("../outside"), QString()), QString());
    EXPECT_TEXT(pathForResource(text("tools/../dnd"), text("png")), QString());
    EXPECT_TRUE(QFile::remove(folder.path(text("../outside"))));
}

TEST_F(Bundle, ToolPathsNeedNoFile)
{
    EXPECT_TEXT(toolPath(text("movencoder")), folder.path(text("tools/movencoder")));
}

TEST_F(Bundle, TheResourceFolderIsBesideTheProgram)
{
    setResourcePath(QString());
    const QString expected = QDir::cleanPath(QCoreApplication::applicationDirPath() + text("/../resources"));
    EXPECT_TEXT(resourcePath(), expected);
    setResourcePath(text("/somewhere/else/"));
    EXPECT_TEXT(resourcePath(), text("/somewhere/else"));
}

TEST_F(Bundle, FoldersLieInTheUsersLibrary)
{
    const test::EnvironmentChange home("HOME", "/home/me");
    EXPECT_TEXT(cachesFolder(), text("/home/me/Library/Caches/Tavrix"));
    EXPECT_TEXT(supportFolder(), text("/home/me/Library/Application Support/Tavrix"));
    EXPECT_TEXT(logsFolder(), text("/home/me/Library/Logs/Tavrix"));
    useInfo(infoText);
    EXPECT_TEXT(cachesFolder(), text("/home/me/Library/Caches/Other Name"));
}

TEST_F(Bundle, TheBundleNameStandsInLogLines)
{
    useInfo(infoText);
    EXPECT_TEXT(bundleName(), text("Other Name"));
    testing::internal::CaptureStderr();
    logLine(text("x"));
    EXPECT_NE(testing::internal::GetCapturedStderr().find(" Other Name["), std::string::npos);
    setResourcePath(QString());
    EXPECT_TEXT(bundleName(), text("Tavrix"));
}

TEST(PrivateFolder, IsMadeForItsOwnerAlone)
{
    const test::TempFolder folder;
    const QString fresh = folder.path(text("fresh"));
    EXPECT_TRUE(ensurePrivateFolder(fresh));
    struct stat status = {};
    ASSERT_EQ(lstat(fresh.toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    EXPECT_TRUE(ensurePrivateFolder(fresh));
}

TEST(PrivateFolder, RefusesWhatSomebodyElseMayHavePrepared)
{
    const test::TempFolder folder;
    const QString open = folder.makeFolder(text("open"));
    ASSERT_EQ(chmod(open.toUtf8().constData(), 0755), 0);
    EXPECT_FALSE(ensurePrivateFolder(open));

    const QString target = folder.path(text("target"));
    ASSERT_TRUE(ensurePrivateFolder(target));
    const QString link = folder.path(text("link"));
    ASSERT_EQ(symlink(target.toUtf8().constData(), link.toUtf8().constData()), 0);
    EXPECT_FALSE(ensurePrivateFolder(link));

    EXPECT_FALSE(ensurePrivateFolder(folder.makeFile(text("file"))));
    EXPECT_FALSE(ensurePrivateFolder(folder.path(text("no/parent"))));
    EXPECT_FALSE(ensurePrivateFolder(QString()));
    if (geteuid() == 0) {
        const QString foreign = folder.path(text("foreign"));
        ASSERT_TRUE(ensurePrivateFolder(foreign));
        ASSERT_EQ(chown(foreign.toUtf8().constData(), 12345, 12345), 0);
        EXPECT_FALSE(ensurePrivateFolder(foreign));
    }
}

TEST(TemporaryFolder, IsTheUsersOwn)
{
    const test::TempFolder folder;
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
    const test::EnvironmentChange own("TMPDIR", folder.path().toUtf8().constData());
    EXPECT_TEXT(systemTemporaryFolder(), folder.path() + u'/');
    const test::EnvironmentChange slashes("TMPDIR", (folder.path() + text("//")).toUtf8().constData());
    EXPECT_TEXT(systemTemporaryFolder(), folder.path() + u'/');
}

TEST(TemporaryFolder, OneThatOthersCanChangeIsNotUsed)
{
    const test::TempFolder folder;
    const QString fallback = text("/tmp/tavrix-") + QString::number(geteuid());
    const bool existed = test::itemExists(fallback);
    const QString shared = folder.makeFolder(text("shared"));
    ASSERT_EQ(chmod(shared.toUtf8().constData(), 01777), 0);
    const QString link = folder.path(text("link"));
    const QByteArray target = folder.makeFolder(text("target")).toUtf8();
    ASSERT_EQ(symlink(target.constData(), link.toUtf8().constData()), 0);
    const QString plain = folder.makeFile(text("file"));
    for (const QString& path :
         {shared, link, link + u'/', plain, folder.path(text("gone")), text("relative"), text("")}) {
        const test::EnvironmentChange variable("TMPDIR", path.toUtf8().constData());
        EXPECT_TEXT(systemTemporaryFolder(), fallback + u'/') << path.toStdString();
    }
    if (!existed) {
        rmdir(fallback.toUtf8().constData());
    }
}

TEST(TemporaryFolder, OneThatCannotBeWrittenToIsNotUsed)
{
    const test::OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const test::TempFolder folder;
    const QString fallback = text("/tmp/tavrix-") + QString::number(geteuid());
    const bool existed = test::itemExists(fallback);
    const QString closed = folder.makeFolder(text("closed"));
    ASSERT_EQ(chmod(closed.toUtf8().constData(), 0555), 0);
    const test::EnvironmentChange variable("TMPDIR", closed.toUtf8().constData());
    EXPECT_TEXT(systemTemporaryFolder(), fallback + u'/');
    if (!existed) {
        rmdir(fallback.toUtf8().constData());
    }
}

} // namespace
} // namespace tavrix
