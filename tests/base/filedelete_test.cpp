// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filedelete.h"
#include "base/files/treeremoval.h"
#include "base/store/settings.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const QString folderAlarm = QStringLiteral("alerte de sécurité dirname");
const QString wildcardAlarm = QStringLiteral("alerte de sécurité joker");

struct RefusedRow {
    std::string name;
    const char* path;
    QString alarm;
};

class RefusedDelete : public testing::TestWithParam<RefusedRow>
{
};

TEST_P(RefusedDelete, IsLoggedAndFalse)
{
    const LogCapture log;
    EXPECT_FALSE(rmCocoa(text(GetParam().path)));
    EXPECT_TEXTS(log.lines(), QStringList{GetParam().alarm});
}

INSTANTIATE_TEST_SUITE_P(
    Paths, RefusedDelete,
    testing::Values(RefusedRow{"InTheRoot", "/no-such-file-here", folderAlarm},
                    RefusedRow{"FolderInTheRoot", "/etc", folderAlarm},
                    RefusedRow{"TrailingSlash", "/etc/", folderAlarm}, RefusedRow{"DoubleSlash", "//etc", folderAlarm},
                    RefusedRow{"DotComponent", "/./etc", folderAlarm}, RefusedRow{"Root", "/", folderAlarm},
                    RefusedRow{"Volumes", "/Volumes", folderAlarm}, RefusedRow{"Users", "/Users", folderAlarm},
                    RefusedRow{"Relative", "foo.txt", folderAlarm}, RefusedRow{"Empty", "", folderAlarm},
                    RefusedRow{"UpAndDown", "/tmp/x/../../etc", folderAlarm},
                    RefusedRow{"OutOfTheFreeFolder", "/TXauthoring/../etc", folderAlarm},
                    RefusedRow{"Mounted", "/proc", folderAlarm}, RefusedRow{"Home", "~", folderAlarm},
                    RefusedRow{"HomeSlash", "~/", folderAlarm}, RefusedRow{"Star", "*", wildcardAlarm},
                    RefusedRow{"StarText", "*.mov", wildcardAlarm}, RefusedRow{"RootStar", "/*", wildcardAlarm},
                    RefusedRow{"RootStarBelow", "/*/x/y", wildcardAlarm},
                    RefusedRow{"VolumesStar", "/Volumes/*", wildcardAlarm},
                    RefusedRow{"UsersStar", "/Volumes/Users/*x", wildcardAlarm}),
    rowName<RefusedRow>);

TEST(RefusedDeletes, NothingIsSilent)
{
    const LogCapture log;
    EXPECT_FALSE(rmCocoa(QString()));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(RefusedDeletes, MountedVolumes)
{
    const TempFolder folder;
    EXPECT_FALSE(isMountPoint(QFile::encodeName(folder.path())));
    EXPECT_TRUE(isMountPoint("/"));
    EXPECT_TRUE(isMountPoint("/proc"));
    if (!isMountPoint("/dev/pts")) {
        GTEST_SKIP() << "nothing mounted below the root's folders";
    }
    const LogCapture log;
    EXPECT_FALSE(rmCocoa(QStringLiteral("/dev/pts")));
    EXPECT_TEXTS(log.lines(), QStringList{folderAlarm});
}

TEST(RefusedDeletes, TheHomeAndAllThatHoldsIt)
{
    const TempFolder folder;
    const QString home = folder.makeFolder(QStringLiteral("homes/me"));
    folder.makeFile(QStringLiteral("homes/me/keep"), "k");
    const EnvironmentChange change("HOME", QFile::encodeName(home).constData());
    EXPECT_FALSE(rmCocoa(home));
    EXPECT_FALSE(rmCocoa(folder.path(QStringLiteral("homes/"))));
    EXPECT_FALSE(rmCocoa(folder.path()));
    moveToTrash(home);
    EXPECT_FALSE(removeOwnFolder(folder.path(QStringLiteral("homes"))));
    EXPECT_EQ(readBytes(home + QStringLiteral("/keep")), QByteArray("k"));
    EXPECT_TRUE(rmCocoa(folder.makeFolder(QStringLiteral("homes/other"))));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("homes/other"))));
}

TEST(RefusedDeletes, AHomeBehindALinkAndTheLinksThatLeadToIt)
{
    const TempFolder folder;
    const QString keep = folder.makeFile(QStringLiteral("disk/homes/me/keep"), "k");
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("disk/homes")), folder.path(QStringLiteral("homes"))));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("homes/me")), folder.path(QStringLiteral("me"))));
    for (const char* home : {"me", "homes/me", "homes/me/"}) {
        const EnvironmentChange change("HOME", QFile::encodeName(folder.path(text(home))).constData());
        for (const char* part : {"disk", "disk/homes", "disk/homes/me"}) {
            EXPECT_FALSE(rmCocoa(folder.path(text(part)))) << home << ' ' << part;
            EXPECT_FALSE(removeOwnFolder(folder.path(text(part)))) << home << ' ' << part;
        }
        EXPECT_FALSE(rmCocoa(folder.path(text(home)))) << home;
    }
    const EnvironmentChange change("HOME", QFile::encodeName(folder.path(QStringLiteral("homes/me"))).constData());
    EXPECT_FALSE(rmCocoa(folder.path(QStringLiteral("homes"))));
    EXPECT_TRUE(rmCocoa(folder.path(QStringLiteral("me"))));
    EXPECT_EQ(readBytes(keep), QByteArray("k"));
}

TEST(Delete, TellsItsObserverAlsoOfWhatWasNotThere)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"));
    const EnvironmentChange home("HOME", QFile::encodeName(folder.makeFolder(QStringLiteral("home"))).constData());
    QStringList told;
    setDeletionObserver([&told](const QString& path) { told.append(path); });
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_TRUE(rmCocoa(QStringLiteral("~/missing")));
    EXPECT_FALSE(rmCocoa(QStringLiteral("/etc")));
    setDeletionObserver({});
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_TEXTS(told, (QStringList{file, file, folder.path(QStringLiteral("home/missing"))}));
}

TEST(Delete, AbsenceIsSuccess)
{
    const TempFolder folder;
    setDEBUG(1);
    const LogCapture log;
    const QString path = folder.path(QStringLiteral("missing"));
    EXPECT_TRUE(rmCocoa(path));
    EXPECT_TRUE(rmCocoa(QStringLiteral("/Volumes/disk/no such clip")));
    EXPECT_TRUE(rmCocoa(QStringLiteral("/TXauthoring/missing")));
    EXPECT_TRUE(rmCocoa(QStringLiteral("/TXauthoring/")));
    setDEBUG(0);
    EXPECT_TEXT(log.lines().value(0), QStringLiteral("rmCocoa             - debut - ") + path);
    EXPECT_TRUE(log.contains(QStringLiteral("rmCocoa             - pre-fin")));
    EXPECT_TEXT(log.lines().last(), QStringLiteral("rmCocoa             - fin - /TXauthoring/"));
}

TEST(Delete, TellsItsStepsWhileDebugging)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"));
    setDEBUG(1);
    const LogCapture log;
    EXPECT_TRUE(rmCocoa(file));
    setDEBUG(0);
    // The lines of the recording bundle come from finding the parent folder.
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("rmCocoa             - debut - ") + file,
                                           QStringLiteral("EyetvBundle         - debut - ") + file,
                                           QStringLiteral("EyetvBundle         - fin   - ") + file,
                                           QStringLiteral("File current        : exists: ") + file,
                                           QStringLiteral("rmCocoa             - pre-fin"),
                                           QStringLiteral("rmCocoa             - fin - ") + file}));
}

TEST(Delete, FilesFoldersAndLinksGoForGood)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("t/a.mov"));
    const QString tree = folder.makeFolder(QStringLiteral("t/tree"));
    folder.makeFile(QStringLiteral("t/tree/sub/.hidden"), "x");
    const QString kept = folder.makeFile(QStringLiteral("kept/precious"), "p");
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("kept")), folder.path(QStringLiteral("t/tree/link"))));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("kept")), folder.path(QStringLiteral("t/direct"))));
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_TRUE(rmCocoa(tree + u'/'));
    EXPECT_TRUE(rmCocoa(folder.path(QStringLiteral("t/direct/"))));
    EXPECT_TEXTS(
        QDir(folder.path(QStringLiteral("t"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System),
        QStringList());
    EXPECT_EQ(readBytes(kept), QByteArray("p"));
}

TEST(Delete, ADanglingLinkGoesToo)
{
    const TempFolder folder;
    const QString link = folder.path(QStringLiteral("dangling"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("nowhere")), link));
    EXPECT_TRUE(rmCocoa(link));
    EXPECT_FALSE(itemExists(link));
}

// Data home of its own, so that each test sees only its own trash.
class Trash : public testing::Test
{
protected:
    [[nodiscard]] QStringList trashed() const
    {
        return QDir(folder.path(QStringLiteral("data/deep/Trash/files")))
            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden | QDir::System, QDir::Name);
    }
    TempFolder folder;
    EnvironmentChange data{"XDG_DATA_HOME", QFile::encodeName(folder.path(QStringLiteral("data/deep"))).constData()};
};

struct NameRow {
    std::string name;
    const char* file;
    bool trash;
};

class TrashNames : public Trash, public testing::WithParamInterface<NameRow>
{
};

TEST_P(TrashNames, OnlyPlainNamesAreRemovedForGood)
{
    const QString file = folder.makeFile(QStringLiteral("t/") + text(GetParam().file), "x");
    const QString neighbour = folder.makeFile(QStringLiteral("t/a"), "neighbour");
    const QString decoded = folder.makeFile(QStringLiteral("t/aA"), "decoded");
    const LogCapture log;
    EXPECT_TRUE(rmCocoa(file));
    EXPECT_FALSE(itemExists(file));
    EXPECT_EQ(readBytes(neighbour), QByteArray("neighbour"));
    EXPECT_EQ(readBytes(decoded), QByteArray("decoded"));
    EXPECT_EQ(trashed().size(), GetParam().trash ? 1 : 0);
    const QStringList expected = GetParam().trash ? QStringList{QStringLiteral("File current        :-( not deleted 1"),
                                                                QStringLiteral("File current        :-/ …to trash")}
                                                  : QStringList();
    EXPECT_TEXTS(log.lines(), expected);
}

INSTANTIATE_TEST_SUITE_P(Names, TrashNames,
                         testing::Values(NameRow{"Plain", "b.mov", false}, NameRow{"Marks", "-_.!~*'():@&=+$,", false},
                                         NameRow{"Blank", "a b.mov", true}, NameRow{"Fragment", "a#b", true},
                                         NameRow{"Query", "a?b", true}, NameRow{"Parameter", "a;b", true},
                                         NameRow{"Escape", "a%41", true}, NameRow{"Accent", "é.mov", true},
                                         NameRow{"Emoji", "😀", true}, NameRow{"Quotes", "\"x\"", true},
                                         NameRow{"Brackets", "[x]{y}", true}, NameRow{"Backslash", "a\\b", true},
                                         NameRow{"Newline", "a\nb", true}, NameRow{"Hidden", ".x", false},
                                         NameRow{"Output", "clip-2011-03-04 10;20;30-x.mov", true}),
                         rowName<NameRow>);

TEST_F(Trash, IsMadePrivateWhenThereIsNone)
{
    const QString file = folder.makeFile(QStringLiteral("t/a b"), "x");
    EXPECT_TRUE(moveToTrash(file));
    EXPECT_TEXTS(trashed(), QStringList{QStringLiteral("a b")});
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("data/deep/Trash/files/a b"))), QByteArray("x"));
    struct stat status {
    };
    ASSERT_EQ(stat(QFile::encodeName(folder.path(QStringLiteral("data"))).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_FALSE(itemExists(QDir::current().filePath(QStringLiteral("files"))));
}

TEST_F(Trash, TakesFoldersLinksAndRepeatedNames)
{
    const QString kept = folder.makeFile(QStringLiteral("kept/x"), "kept");
    for (const char* round : {"1", "2"}) {
        const QString tree = folder.makeFolder(QStringLiteral("t/a tree"));
        folder.makeFile(QStringLiteral("t/a tree/x"), round);
        EXPECT_TRUE(rmCocoa(tree));
        EXPECT_FALSE(itemExists(tree));
    }
    const QString link = folder.path(QStringLiteral("t/a link"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("kept")), link));
    EXPECT_TRUE(rmCocoa(link));
    EXPECT_FALSE(itemExists(link));
    EXPECT_EQ(readBytes(kept), QByteArray("kept"));
    EXPECT_EQ(trashed().size(), 3);
}

TEST_F(Trash, AnswersTrueWhateverHappens)
{
    EXPECT_TRUE(moveToTrash(QString()));
    EXPECT_TRUE(moveToTrash(QStringLiteral("")));
    EXPECT_TRUE(moveToTrash(folder.path(QStringLiteral("missing"))));
    EXPECT_TRUE(moveToTrash(QStringLiteral("/proc/version")));
}

TEST_F(Trash, DoesNotTakeAFolderByAWayThroughItsContents)
{
    folder.makeFile(QStringLiteral("t/sub/x"), "x");
    EXPECT_TRUE(moveToTrash(folder.path(QStringLiteral("t/sub/.."))));
    EXPECT_TRUE(moveToTrash(folder.path(QStringLiteral("t/."))));
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("t/sub/x"))), QByteArray("x"));
    EXPECT_TEXTS(trashed(), QStringList());
}

TEST_F(Trash, AFileInItsPlaceLeavesTheProgramsOwnTrash)
{
    folder.makeFile(QStringLiteral("data/deep/Trash"), "in the way");
    for (const char* round : {"1", "2"}) {
        const QString file = folder.makeFile(QStringLiteral("t/a b"), round);
        EXPECT_TRUE(rmCocoa(file));
        EXPECT_FALSE(itemExists(file));
    }
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("data/deep/Tavrix/Trash/a b"))), QByteArray("1"));
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("data/deep/Tavrix/Trash/a b.2"))), QByteArray("2"));
}

TEST_F(Trash, WithoutAnyTrashTheFileStays)
{
    folder.makeFile(QStringLiteral("data"), "in the way");
    const QString file = folder.makeFile(QStringLiteral("t/a b"), "x");
    const LogCapture log;
    EXPECT_FALSE(rmCocoa(file));
    EXPECT_EQ(readBytes(file), QByteArray("x"));
    EXPECT_TEXT(log.lines().last(), QStringLiteral("File current        :-( failure"));
}

TEST(OwnFile, OnlyRegularFilesInsideTheFolder)
{
    const TempFolder folder;
    const QString own = folder.makeFolder(QStringLiteral("own folder"));
    const QString outside = folder.makeFile(QStringLiteral("outside"), "o");
    const QString sibling = folder.makeFile(QStringLiteral("own folder2/x"), "s");
    const QString file = folder.makeFile(QStringLiteral("own folder/a_MASTER é.mov"), "m");
    const QString deep = folder.makeFile(QStringLiteral("own folder/sub/b"), "d");
    ASSERT_TRUE(QFile::link(outside, own + QStringLiteral("/link")));
    ASSERT_TRUE(QFile::link(folder.path(), own + QStringLiteral("/up")));

    EXPECT_FALSE(removeOwnFile(outside, own));
    EXPECT_FALSE(removeOwnFile(sibling, own));
    EXPECT_FALSE(removeOwnFile(own + QStringLiteral("/../outside"), own));
    EXPECT_FALSE(removeOwnFile(own + QStringLiteral("/up/outside"), own));
    EXPECT_FALSE(removeOwnFile(own + QStringLiteral("/link"), own));
    EXPECT_FALSE(removeOwnFile(own + QStringLiteral("/sub"), own));
    EXPECT_FALSE(removeOwnFile(own, own));
    EXPECT_FALSE(removeOwnFile(own + u'/', own));
    EXPECT_FALSE(removeOwnFile(own + QStringLiteral("/."), own));
    EXPECT_FALSE(removeOwnFile(QString(), own));
    EXPECT_FALSE(removeOwnFile(file, QString()));
    EXPECT_EQ(readBytes(outside), QByteArray("o"));
    EXPECT_EQ(readBytes(sibling), QByteArray("s"));

    EXPECT_TRUE(removeOwnFile(file, own + u'/'));
    EXPECT_TRUE(removeOwnFile(deep, own));
    EXPECT_FALSE(itemExists(file));
    EXPECT_FALSE(itemExists(deep));
    EXPECT_TRUE(removeOwnFile(file, own));
    EXPECT_TRUE(removeOwnFile(own + QStringLiteral("/gone/x"), own));
    EXPECT_TRUE(itemExists(own + QStringLiteral("/link")));
}

TEST(OwnFile, TheFolderMayBeReachedThroughALink)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("real/a"), "a");
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("real")), folder.path(QStringLiteral("alias"))));
    EXPECT_TRUE(removeOwnFile(file, folder.path(QStringLiteral("alias"))));
    EXPECT_FALSE(itemExists(file));
}

TEST(OwnFolder, GoesWithAllItHoldsButNoLinkIsFollowed)
{
    const TempFolder folder;
    const QString outside = folder.makeFile(QStringLiteral("outside/x"), "o");
    const QString own = folder.makeFolder(QStringLiteral("run/Tavrix"));
    folder.makeFile(QStringLiteral("run/Tavrix/a b/c"), "x");
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("outside")), own + QStringLiteral("/link")));
    const QString link = folder.path(QStringLiteral("run/alias"));
    ASSERT_TRUE(QFile::link(own, link));
    EXPECT_FALSE(removeOwnFolder(link));
    EXPECT_FALSE(removeOwnFolder(link + u'/'));
    EXPECT_TRUE(itemExists(own + QStringLiteral("/a b/c")));
    EXPECT_TRUE(removeOwnFolder(own + u'/'));
    EXPECT_FALSE(itemExists(own));
    EXPECT_EQ(readBytes(outside), QByteArray("o"));
    EXPECT_TRUE(removeOwnFolder(own));
    EXPECT_FALSE(removeOwnFolder(QString()));
    EXPECT_FALSE(removeOwnFolder(outside));
    EXPECT_FALSE(removeOwnFolder(QStringLiteral("/proc")));
}

TEST(OwnFolder, OfAnotherUserIsRefused)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    const TempFolder folder;
    const QString other = folder.makeFolder(QStringLiteral("other"));
    ASSERT_EQ(chown(QFile::encodeName(other).constData(), 12345, 12345), 0);
    EXPECT_FALSE(removeOwnFolder(other));
    EXPECT_TRUE(itemExists(other));
}

} // namespace
