// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "support/ordinaryuser.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Presence : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.makeFile(QStringLiteral("clip.mts"), "abc");
        folder.makeFile(QStringLiteral("été à 10 h.mts"), "abcd");
        folder.makeFolder(QStringLiteral("sub"));
        ASSERT_EQ(mkfifo(QFile::encodeName(folder.path(QStringLiteral("fifo"))).constData(), 0600), 0);
        ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("missing")), folder.path(QStringLiteral("dangling"))));
        ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("clip.mts")), folder.path(QStringLiteral("link"))));
    }
    TempFolder folder;
};

TEST_F(Presence, AnythingThatOpensForReadingIsPresent)
{
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("clip.mts"))));
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("été à 10 h.mts"))));
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("link"))));
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("sub"))));
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("sub/"))));
    EXPECT_TRUE(testPresenceCocoa(folder.path(QStringLiteral("clip.mts"))));
}

TEST_F(Presence, AbsenceDanglingLinksAndNothingAreNot)
{
    EXPECT_FALSE(testPresenceC(QString()));
    EXPECT_FALSE(testPresenceC(QStringLiteral("")));
    EXPECT_FALSE(testPresenceC(folder.path(QStringLiteral("missing"))));
    EXPECT_FALSE(testPresenceC(folder.path(QStringLiteral("dangling"))));
    EXPECT_FALSE(testPresenceC(folder.path(QStringLiteral("clip.mts")) + QChar(0) + QStringLiteral("x")));
}

TEST_F(Presence, AFifoNeverBlocks)
{
    EXPECT_TRUE(testPresenceC(folder.path(QStringLiteral("fifo"))));
    EXPECT_EQ(poidsFileC(folder.path(QStringLiteral("fifo")), QStringLiteral("O")), -1.0);
}

TEST_F(Presence, TheTildeIsExpanded)
{
    const EnvironmentChange home("HOME", QFile::encodeName(folder.path()).constData());
    EXPECT_TRUE(testPresenceC(QStringLiteral("~/clip.mts")));
    EXPECT_EQ(poidsFileC(QStringLiteral("~/clip.mts"), QStringLiteral("o")), 3.0);
    EXPECT_EQ(poidsFile(QStringLiteral("~/clip.mts"), QString()), 3.0);
    EXPECT_TRUE(isFolder(QStringLiteral("~/sub")));
}

TEST_F(Presence, AnUnreadableFileIsAbsent)
{
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const QString file = folder.makeFile(QStringLiteral("secret"), "x");
    ASSERT_EQ(chmod(QFile::encodeName(file).constData(), 0), 0);
    EXPECT_FALSE(testPresenceC(file));
    EXPECT_FALSE(disponible(file));
    EXPECT_EQ(poidsFileC(file, QStringLiteral("O")), -1.0);
    EXPECT_EQ(poidsFile(file, QStringLiteral("O")), 1.0);
}

TEST_F(Presence, OnlyWritableFilesAreAvailable)
{
    EXPECT_TRUE(disponible(folder.path(QStringLiteral("clip.mts"))));
    EXPECT_FALSE(disponible(folder.path(QStringLiteral("sub"))));
    EXPECT_FALSE(disponible(folder.path(QStringLiteral("missing"))));
    EXPECT_FALSE(disponible(QString()));
}

TEST_F(Presence, FoldersAndLinksToThemAreFolders)
{
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("sub")), folder.path(QStringLiteral("linkToSub"))));
    EXPECT_TRUE(isFolder(folder.path(QStringLiteral("sub"))));
    EXPECT_TRUE(isFolder(folder.path(QStringLiteral("linkToSub"))));
    EXPECT_FALSE(isFolder(folder.path(QStringLiteral("clip.mts"))));
    EXPECT_FALSE(isFolder(folder.path(QStringLiteral("missing"))));
    EXPECT_FALSE(isFolder(QString()));
}

TEST_F(Presence, OneFileHasManyNames)
{
    const QString clip = folder.path(QStringLiteral("clip.mts"));
    const QString hard = folder.path(QStringLiteral("hard"));
    ASSERT_EQ(::link(QFile::encodeName(clip).constData(), QFile::encodeName(hard).constData()), 0);
    EXPECT_TRUE(isSameFile(clip, hard));
    EXPECT_TRUE(isSameFile(clip, folder.path(QStringLiteral("link"))));
    EXPECT_TRUE(isSameFile(clip, folder.path(QStringLiteral("sub/../clip.mts"))));
    EXPECT_FALSE(isSameFile(clip, folder.path(QStringLiteral("été à 10 h.mts"))));
    EXPECT_FALSE(isSameFile(folder.path(QStringLiteral("missing")), folder.path(QStringLiteral("missing"))));
    EXPECT_FALSE(isSameFile(QString(), QString()));
}

struct SizeRow {
    std::string name;
    const char* unit; // null = nothing
    double expected;
};

class SizeInUnits : public testing::TestWithParam<SizeRow>
{
};

TEST_P(SizeInUnits, OfAFileOf3MiB)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a b.mts"), QByteArray(3 << 20, 'x'));
    EXPECT_EQ(poidsFile(file, text(GetParam().unit)), GetParam().expected);
    EXPECT_EQ(poidsFileC(file, text(GetParam().unit)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Units, SizeInUnits,
                         testing::Values(SizeRow{"Nothing", nullptr, 3145728.0}, SizeRow{"Bytes", "O", 3145728.0},
                                         SizeRow{"LowerCaseBytes", "o", 3145728.0}, SizeRow{"Empty", "", 3145728.0},
                                         SizeRow{"Kilo", "k", 3072.0}, SizeRow{"Mega", "m", 3.0},
                                         SizeRow{"MegaUpper", "M", 3.0}, SizeRow{"Giga", "g", 3.0 / 1024.0},
                                         SizeRow{"Unknown", "x", 3145728.0}),
                         rowName<SizeRow>);

TEST(Sizes, MissingAndNothingAreMinusOne)
{
    const TempFolder folder;
    for (const QString& path : {QString(), QStringLiteral(""), folder.path(QStringLiteral("missing"))}) {
        EXPECT_EQ(poidsFile(path, QStringLiteral("m")), -1.0);
        EXPECT_EQ(poidsFileC(path, QStringLiteral("m")), -1.0);
    }
}

TEST(Sizes, AFolderHasAnAttributeSizeButNoContentSize)
{
    const TempFolder folder;
    EXPECT_EQ(poidsFileC(folder.path(), QStringLiteral("O")), -1.0);
    EXPECT_GE(poidsFile(folder.path(), QStringLiteral("O")), 0.0);
}

TEST(Sizes, AreLoggedWhenDebugging)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a.txt"), QByteArray(1536, 'x'));
    setDEBUG(1);
    const LogCapture log;
    [[maybe_unused]] const double byContent = poidsFileC(file, QStringLiteral("k"));
    [[maybe_unused]] const double byAttribute = poidsFile(file, QStringLiteral("k"));
    setDEBUG(0);
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("poidsFileC          :   1536 units"),
                                           QStringLiteral("poidsFileC          :-) 1.50 k"),
                                           QStringLiteral("current file size   : 1536 units"),
                                           QStringLiteral("current file size   : 1.50 k")}));
}

TEST(Sizes, AFolderIsTheSumOfWhatIsBelow)
{
    const TempFolder folder;
    folder.makeFile(QStringLiteral("t/a.mts"), QByteArray(1 << 20, 'x'));
    folder.makeFile(QStringLiteral("t/.hidden"), QByteArray(1 << 19, 'x'));
    EXPECT_DOUBLE_EQ(poidsFolderMo(folder.path(QStringLiteral("t"))), 1.5);
    const LogCapture log;
    EXPECT_DOUBLE_EQ(poidsFolderMo(folder.path(QStringLiteral("t/"))), 1.5);
    EXPECT_TRUE(log.contains(QStringLiteral("current folder size  : 1.500000 Mo")));
    folder.makeFile(QStringLiteral("t/sub/deep/b.mts"), QByteArray(1 << 20, 'x'));
    EXPECT_GE(poidsFolderMo(folder.path(QStringLiteral("t"))), 2.5);
    EXPECT_LT(poidsFolderMo(folder.path(QStringLiteral("t"))), 2.6);
    EXPECT_EQ(poidsFolderMo(QString()), 0.0);
    EXPECT_EQ(poidsFolderMo(folder.path(QStringLiteral("missing"))), 0.0);
}

TEST(Sizes, AFolderSizeFollowsNoLinks)
{
    const TempFolder folder;
    folder.makeFile(QStringLiteral("big/a"), QByteArray(1 << 20, 'x'));
    folder.makeFolder(QStringLiteral("t"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("big")), folder.path(QStringLiteral("t/link"))));
    ASSERT_TRUE(QFile::link(QStringLiteral(".."), folder.path(QStringLiteral("t/up"))));
    EXPECT_LT(poidsFolderMo(folder.path(QStringLiteral("t"))), 0.01);
}

TEST(FreeSpace, IsInMegabytesAndLogged)
{
    const TempFolder folder;
    const LogCapture log;
    EXPECT_GT(espaceDiskDispo(folder.path()), 0);
    EXPECT_TRUE(log.contains(QStringLiteral("free disk space file: ") + folder.path()));
    EXPECT_TRUE(log.lines().last().startsWith(QStringLiteral("free disk space     : ")));
}

TEST(FreeSpace, NothingAndErrorsAreZero)
{
    const TempFolder folder;
    EXPECT_EQ(espaceDiskDispo(QString()), 0);
    const LogCapture log;
    EXPECT_EQ(espaceDiskDispo(folder.path(QStringLiteral("missing/at all"))), 0);
    EXPECT_TRUE(log.contains(QStringLiteral("error :-( ") + missingFileText()));
}

TEST(FreeSpace, CanBeReplaced)
{
    const TempFolder folder;
    setFreeSpaceForTests(7);
    EXPECT_EQ(espaceDiskDispo(folder.path()), 7);
    setFreeSpaceForTests(0);
    EXPECT_EQ(espaceDiskDispo(folder.path()), 0);
    setFreeSpaceForTests(-1);
    EXPECT_GT(espaceDiskDispo(folder.path()), 7);
}

} // namespace
