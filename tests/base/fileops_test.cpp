// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/settings.h"
#include "support/ordinaryuser.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct stat statusOf(const QString& path)
{
    struct stat status {
    };
    EXPECT_EQ(lstat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
    return status;
}

void setModified(const QString& path, time_t seconds)
{
    const std::array<timespec, 2> times{timespec{seconds, 0}, timespec{seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times.data(), AT_SYMLINK_NOFOLLOW), 0);
}

// What copying and moving have in common.
struct TransferKind {
    std::string name;
    bool (*run)(const QString&, const QString&, const QString&);
    bool keepsSource;
};

class Transfer : public testing::TestWithParam<TransferKind>
{
protected:
    static bool run(const QString& from, const QString& to, const char* flag)
    {
        return GetParam().run(from, to, text(flag));
    }
    TempFolder folder;
    const QString source = folder.makeFile(QStringLiteral("clip d'été.mts"), "new");
};

TEST_P(Transfer, BringsTheFileWithItsDateAndMode)
{
    setModified(source, 1299230430);
    ASSERT_EQ(chmod(QFile::encodeName(source).constData(), 0640), 0);
    const QString destination = folder.path(QStringLiteral("copie – 1.mts"));
    EXPECT_TRUE(run(source, destination, nullptr));
    EXPECT_EQ(readBytes(destination), QByteArray("new"));
    EXPECT_EQ(statusOf(destination).st_mtime, 1299230430);
    EXPECT_EQ(statusOf(destination).st_mode & 07777U, 0640U);
    EXPECT_EQ(itemExists(source), GetParam().keepsSource);
}

TEST_P(Transfer, AMissingSourceIsRefused)
{
    const LogCapture log;
    const QString missing = folder.path(QStringLiteral("missing"));
    EXPECT_FALSE(run(missing, folder.path(QStringLiteral("d")), "y"));
    EXPECT_FALSE(run(QString(), folder.path(QStringLiteral("d")), "y"));
    EXPECT_TRUE(log.contains(QStringLiteral("File current        :-( does not exist: ") + missing));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("d"))));
}

TEST_P(Transfer, AnExistingDestinationStaysUnlessTheFlagIsExactlyY)
{
    const QString destination = folder.makeFile(QStringLiteral("d.mts"), "old");
    for (const char* flag : {static_cast<const char*>(nullptr), "", "Y", "-y", "yes", " y", "n"}) {
        EXPECT_FALSE(run(source, destination, flag)) << (flag ? flag : "nothing");
        EXPECT_EQ(readBytes(destination), QByteArray("old"));
        EXPECT_TRUE(itemExists(source));
    }
    const LogCapture log;
    EXPECT_TRUE(run(source, destination, "y"));
    EXPECT_EQ(readBytes(destination), QByteArray("new"));
    EXPECT_TRUE(log.contains(QStringLiteral("New deleted first    :-) ") + destination));
    EXPECT_EQ(itemExists(source), GetParam().keepsSource);
}

TEST_P(Transfer, OneFileUnderTwoNamesIsLeftAlone)
{
    const QString hard = folder.path(QStringLiteral("hard"));
    const QString soft = folder.path(QStringLiteral("soft"));
    ASSERT_EQ(::link(QFile::encodeName(source).constData(), QFile::encodeName(hard).constData()), 0);
    ASSERT_TRUE(QFile::link(source, soft));
    for (const QString& name : {source, hard, soft}) {
        EXPECT_TRUE(run(source, name, "y")) << name.toStdString();
        EXPECT_EQ(readBytes(source), QByteArray("new"));
    }
    EXPECT_TRUE(run(soft, source, "y"));
    EXPECT_EQ(readBytes(source), QByteArray("new"));
}

TEST_P(Transfer, AFolderThatHoldsTheSourceIsNotRemoved)
{
    const QString inner = folder.makeFile(QStringLiteral("parent/deep/clip.mts"), "inner");
    EXPECT_TRUE(run(inner, folder.path(QStringLiteral("parent")), "y"));
    EXPECT_EQ(readBytes(inner), QByteArray("inner"));
}

TEST_P(Transfer, AFolderIsNotPutIntoItself)
{
    folder.makeFile(QStringLiteral("t/a"), "a");
    EXPECT_TRUE(run(folder.path(QStringLiteral("t")), folder.path(QStringLiteral("t/inner")), "y"));
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("t/a"))), QByteArray("a"));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("t/inner"))));
}

TEST_P(Transfer, WhatStandsInTheSourceIsNotRemovedForIt)
{
    folder.makeFile(QStringLiteral("t/a"), "a");
    folder.makeFile(QStringLiteral("t/inner/b"), "b");
    for (const char* destination : {"t/a", "t/inner", "t/inner/b"}) {
        EXPECT_TRUE(run(folder.path(QStringLiteral("t")), folder.path(text(destination)), "y")) << destination;
        EXPECT_EQ(readBytes(folder.path(QStringLiteral("t/a"))), QByteArray("a")) << destination;
        EXPECT_EQ(readBytes(folder.path(QStringLiteral("t/inner/b"))), QByteArray("b")) << destination;
    }
}

TEST_P(Transfer, ALinkGoesIntoTheFolderItLeadsTo)
{
    folder.makeFolder(QStringLiteral("t"));
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("t")), link));
    EXPECT_TRUE(run(link, folder.path(QStringLiteral("t/inner")), nullptr));
    EXPECT_TEXT(srcFromLn(folder.path(QStringLiteral("t/inner"))), folder.path(QStringLiteral("t")));
    EXPECT_EQ(itemExists(link), GetParam().keepsSource);
}

TEST_P(Transfer, WholeFoldersKeepLinksDatesAndModes)
{
    folder.makeFile(QStringLiteral("t/sub/.hidden"), "h");
    folder.makeFile(QStringLiteral("outside"), "o");
    ASSERT_TRUE(QFile::link(QStringLiteral("../outside"), folder.path(QStringLiteral("t/link"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), folder.path(QStringLiteral("t/dangling"))));
    ASSERT_EQ(chmod(QFile::encodeName(folder.path(QStringLiteral("t/sub"))).constData(), 0500), 0);
    setModified(folder.path(QStringLiteral("t/sub")), 1000000000);
    EXPECT_TRUE(run(folder.path(QStringLiteral("t/")), folder.path(QStringLiteral("u")), nullptr));
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("u/sub/.hidden"))), QByteArray("h"));
    EXPECT_TEXT(srcFromLn(folder.path(QStringLiteral("u/link"))), QStringLiteral("../outside"));
    EXPECT_TEXT(srcFromLn(folder.path(QStringLiteral("u/dangling"))), QStringLiteral("nowhere"));
    const struct stat sub = statusOf(folder.path(QStringLiteral("u/sub")));
    EXPECT_EQ(sub.st_mode & 07777U, 0500U);
    EXPECT_EQ(sub.st_mtime, 1000000000);
    for (const QString& name : {QStringLiteral("t/sub"), QStringLiteral("u/sub")}) {
        chmod(QFile::encodeName(folder.path(name)).constData(), 0700);
    }
}

TEST_P(Transfer, SucceedsInWordsEvenWhenItFails)
{
    const LogCapture log;
    const QString destination = folder.path(QStringLiteral("no such folder/d"));
    EXPECT_TRUE(run(source, destination, nullptr));
    EXPECT_FALSE(itemExists(destination));
    EXPECT_TRUE(itemExists(source));
    const QStringList lines = log.lines();
    ASSERT_GE(lines.size(), 2);
    EXPECT_TRUE(lines.last().endsWith(QStringLiteral(":-) ") + destination));
    EXPECT_TRUE(lines.at(lines.size() - 2).contains(QStringLiteral(":-( ") + destination));
}

TEST_P(Transfer, ADanglingLinkInTheWayIsNotWrittenThrough)
{
    const QString link = folder.path(QStringLiteral("dangling"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("target")), link));
    EXPECT_TRUE(run(source, link, "y"));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("target"))));
    EXPECT_TRUE(itemExists(source));
}

TEST_P(Transfer, AFailedFolderLeavesNothingBehind)
{
    folder.makeFile(QStringLiteral("t/a"), "a");
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path(QStringLiteral("t/fifo"))).constData(), 0600), 0);
    if (!GetParam().keepsSource) {
        GTEST_SKIP() << "a rename takes special files along";
    }
    EXPECT_TRUE(run(folder.path(QStringLiteral("t")), folder.path(QStringLiteral("u")), nullptr));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("u"))));
}

TEST_P(Transfer, TheTildeIsExpandedOnBothSides)
{
    const EnvironmentChange home("HOME", QFile::encodeName(folder.path()).constData());
    EXPECT_TRUE(run(QStringLiteral("~/clip d'été.mts"), QStringLiteral("~/x.mts"), nullptr));
    EXPECT_EQ(readBytes(folder.path(QStringLiteral("x.mts"))), QByteArray("new"));
}

INSTANTIATE_TEST_SUITE_P(Both, Transfer,
                         testing::Values(TransferKind{"Copy", &cpCocoa, true}, TransferKind{"Move", &mvCocoa, false}),
                         rowName<TransferKind>);

TEST(TransferLog, TellsWhatHappens)
{
    const TempFolder folder;
    const QString a = folder.makeFile(QStringLiteral("a"), "a");
    const QString b = folder.path(QStringLiteral("b"));
    const QString c = folder.path(QStringLiteral("c"));
    setDEBUG(1);
    const LogCapture log;
    cpCocoa(a, b, QString());
    mvCocoa(b, c, QString());
    cpCocoa(a, c, QStringLiteral("Y"));
    setDEBUG(0);
    mvCocoa(a, c, QStringLiteral("Y"));
    cpCocoa(a, c, QStringLiteral("Y"));
    EXPECT_TEXTS(
        log.lines(),
        (QStringList{QStringLiteral("File current         : ") + a, QStringLiteral("File new             : ") + b,
                     QStringLiteral("File copied          :-) ") + b, QStringLiteral("File current         : ") + b,
                     QStringLiteral("File new             : ") + c, QStringLiteral("File moved          :-) ") + c,
                     QStringLiteral("File current         : ") + a, QStringLiteral("File new             : ") + c,
                     QStringLiteral("New already exists   :-( ") + c,
                     QStringLiteral("New already exists   :-( ") + c}));
}

TEST(TransferLog, AFailedCopyBlamedItsSourceForWhatTheDestinationRefused)
{
    const TempFolder folder;
    const QString source = folder.makeFile(QStringLiteral("a"), "a");
    const QString destination = folder.path(QStringLiteral("no such folder/b"));
    const LogCapture log;
    EXPECT_TRUE(cpCocoa(source, destination, QString()));
    EXPECT_TRUE(
        log.contains(QStringLiteral("File not copied      :-( %1 : %1: %2").arg(destination, missingFileText())));
}

TEST(Move, AcrossVolumesKeepsEverything)
{
    QByteArray pattern("/dev/shm/tavrix-XXXXXX");
    const TempFolder folder;
    if (!mkdtemp(pattern.data())) {
        GTEST_SKIP() << "no second volume";
    }
    const QString other = QFile::decodeName(pattern);
    struct stat here = statusOf(folder.path());
    struct stat there = statusOf(other);
    folder.makeFile(QStringLiteral("t/sub/a b.mts"), QByteArray(3000000, 'z'));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), folder.path(QStringLiteral("t/link"))));
    setModified(folder.path(QStringLiteral("t/sub/a b.mts")), 1234567890);
    EXPECT_TRUE(mvCocoa(folder.path(QStringLiteral("t")), other + QStringLiteral("/u"), QString()));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("t"))));
    EXPECT_EQ(readBytes(other + QStringLiteral("/u/sub/a b.mts")), QByteArray(3000000, 'z'));
    EXPECT_EQ(statusOf(other + QStringLiteral("/u/sub/a b.mts")).st_mtime, 1234567890);
    EXPECT_TEXT(srcFromLn(other + QStringLiteral("/u/link")), QStringLiteral("nowhere"));

    // What cannot be copied whole stays where it is.
    folder.makeFile(QStringLiteral("v/a"), "a");
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path(QStringLiteral("v/fifo"))).constData(), 0600), 0);
    if (here.st_dev != there.st_dev) {
        EXPECT_TRUE(mvCocoa(folder.path(QStringLiteral("v")), other + QStringLiteral("/v"), QString()));
        EXPECT_EQ(readBytes(folder.path(QStringLiteral("v/a"))), QByteArray("a"));
        EXPECT_FALSE(itemExists(other + QStringLiteral("/v")));
    }
    EXPECT_TRUE(QDir(other).removeRecursively());
}

TEST(Links, AreMadeAndRead)
{
    const TempFolder folder;
    const QString link = folder.path(QStringLiteral("a link"));
    EXPECT_TRUE(ln_sCocoa(QStringLiteral("/no/where é"), link));
    EXPECT_TEXT(srcFromLn(link), QStringLiteral("/no/where é"));
    EXPECT_FALSE(ln_sCocoa(QStringLiteral("/x"), link));
    EXPECT_FALSE(ln_sCocoa(QString(), folder.path(QStringLiteral("b"))));
    EXPECT_FALSE(ln_sCocoa(QStringLiteral("/x"), QString()));
    EXPECT_TEXT(srcFromLn(folder.path()), QString());
    EXPECT_TEXT(srcFromLn(folder.path(QStringLiteral("missing"))), QString());
    EXPECT_TEXT(srcFromLn(QString()), QString());
}

TEST(Mkdir, MakesParentsAndAcceptsWhatIsThere)
{
    const TempFolder folder;
    const QString path = folder.path(QStringLiteral("a b/é/c"));
    setDEBUG(1);
    const LogCapture log;
    EXPECT_TRUE(mkdirCocoa(path));
    setDEBUG(0);
    EXPECT_TRUE(isFolder(path));
    EXPECT_TRUE(log.contains(QStringLiteral("mkdir               :-)  '") + path + u'\''));
    EXPECT_TRUE(mkdirCocoa(path + u'/'));
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(statusOf(path).st_mode & 07777U, 0777U & ~mask);
}

TEST(Mkdir, FailsTwiceInTheLog)
{
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("file")) + QStringLiteral("/sub");
    const LogCapture log;
    EXPECT_FALSE(mkdirCocoa(path));
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("mkdir               :-(  '") + path + u'\'',
                                           QStringLiteral("mkdir               :-(( '") + path + u'\''}));
    EXPECT_FALSE(mkdirCocoa(QString()));
    EXPECT_FALSE(mkdirCocoa(folder.path(QStringLiteral("file"))));
}

struct ModeRow {
    std::string name;
    int mode;
    unsigned expected;
};

class Chmod : public testing::TestWithParam<ModeRow>
{
};

TEST_P(Chmod, KnowsTwoModes)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"));
    EXPECT_TRUE(chmodCocoa(file, GetParam().mode, QString()));
    EXPECT_EQ(statusOf(file).st_mode & 07777U, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Modes, Chmod,
                         testing::Values(ModeRow{"All", 777, 0777U}, ModeRow{"Group", 775, 0755U},
                                         ModeRow{"Owner", 700, 0755U}, ModeRow{"Octal", 0777, 0755U},
                                         ModeRow{"Zero", 0, 0755U}),
                         rowName<ModeRow>);

TEST(ChmodFlag, RecursionIsOnlyALogLine)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("t/a"));
    ASSERT_EQ(chmod(QFile::encodeName(file).constData(), 0600), 0);
    const LogCapture log;
    EXPECT_TRUE(chmodCocoa(folder.path(QStringLiteral("t")), 777, QStringLiteral("r")));
    EXPECT_TRUE(chmodCocoa(folder.path(QStringLiteral("t")), 777, QStringLiteral("R")));
    EXPECT_EQ(log.lines().count(QStringLiteral("faudra voir comment faire de la récursivité …")), 2);
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 0600U);
    EXPECT_TRUE(chmodCocoa(folder.path(QStringLiteral("missing")), 777, QString()));
    EXPECT_FALSE(chmodCocoa(QString(), 777, QString()));
}

TEST(Rights, AFolderIsTriedAndLeftClean)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("t/a"));
    const LogCapture log;
    EXPECT_TRUE(droitsAcces(folder.path(QStringLiteral("t"))));
    EXPECT_TRUE(droitsAcces(folder.path(QStringLiteral("t/"))));
    EXPECT_TRUE(droitsAcces(file));
    EXPECT_TRUE(droitsAcces(folder.path(QStringLiteral("t/not yet"))));
    EXPECT_EQ(log.lines().count(QStringLiteral("droitsAcces ? 1")), 4);
    EXPECT_TEXTS(QDir(folder.path(QStringLiteral("t"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList{QStringLiteral("a")});
    EXPECT_FALSE(droitsAcces(QString()));
}

TEST(Rights, TheRootIsNotLittered)
{
    [[maybe_unused]] const bool allowed = droitsAcces(QStringLiteral("/"));
    EXPECT_TRUE(QDir(QStringLiteral("/")).entryList({QStringLiteral("_TXdir*")}, QDir::Dirs | QDir::Hidden).isEmpty());
}

TEST(Rights, AReadOnlyFolderIsRefused)
{
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const TempFolder folder;
    const QString locked = folder.makeFolder(QStringLiteral("locked"));
    ASSERT_EQ(chmod(QFile::encodeName(locked).constData(), 0500), 0);
    const LogCapture log;
    EXPECT_FALSE(droitsAcces(locked));
    EXPECT_TRUE(log.contains(QStringLiteral("droitsAcces ? 0")));
    chmod(QFile::encodeName(locked).constData(), 0700);
}

TEST(CreationDate, IsTheEarlierOfBirthAndModification)
{
    const EnvironmentChange zone("TZ", "UTC");
    tzset();
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a clip.mts"));
    setModified(file, 1299230430);
    EXPECT_TEXT(dateCreation(file), QStringLiteral("2011-03-04 09:20:30 +0000"));
    ASSERT_TRUE(QFile::link(file, folder.path(QStringLiteral("link"))));
    EXPECT_TEXT(dateCreation(folder.path(QStringLiteral("link"))), QStringLiteral("2011-03-04 09:20:30 +0000"));
    EXPECT_TEXT(dateCreation(folder.path(QStringLiteral("x/../a clip.mts"))),
                QStringLiteral("2011-03-04 09:20:30 +0000"));
    EXPECT_TEXT(dateCreation(folder.path(QStringLiteral("missing"))), QString());
    EXPECT_TEXT(dateCreation(QString()), QString());
}

} // namespace
