// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/playlistdates.h"

#include "base/bundle/bundle.h"
#include "probe/recordersources.h"
#include "support/ordinaryuser.h"
#include "support/playlistbuilder.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QFile>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

// The tool as the program and a user at a terminal run it.
namespace tavrix
{

namespace
{

using test::PlaylistBuilder;
using test::TempFolder;

struct ToolRun {
    int status = -1;
    QString out;
    QString err;
};

ToolRun runTool(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(TAVRIX_BUILD_RESOURCES "/tools/gettimestamps"), arguments, QIODevice::ReadOnly);
    EXPECT_TRUE(process.waitForFinished(60000)) << process.errorString().toStdString();
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QByteArray playlist(unsigned char zone, const std::vector<test::PlaylistClip>& clips)
{
    const std::vector<unsigned char> bytes = PlaylistBuilder(zone).build(clips);
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

} // namespace

TEST(GetTimestamps, PrintsAllPlaylistsSortedByName)
{
    const TempFolder folder;
    folder.makeFile(QStringLiteral("00001.MPL"),
                    playlist(test::zoneTokyo, {{.name = "00003", .date = {0x20, 0x11, 0x03, 0x04, 0x10, 0x20, 0x30}}}));
    folder.makeFile(QStringLiteral("00000.MPL"), playlist(test::zoneUnset, {{.name = "00001", .thumbnail = 1}}));
    folder.makeFile(QStringLiteral("00002.mpl"), playlist(test::zoneUnset, {{.name = "00009", .thumbnail = 9}}));
    folder.makeFile(QStringLiteral("00004.MPL"), "no playlist");
    folder.makeFile(QStringLiteral("00005.MPL"));
    const ToolRun run = runTool({folder.path()});
    EXPECT_EQ(run.status, 0);
    EXPECT_TEXT(run.out, QStringLiteral("00001 : clip-2010-05-01 12;34;56\n00003 : clip-2011-03-04 10;20;30\n"));
    EXPECT_EQ(run.err, QStringLiteral(""));
}

TEST(GetTimestamps, FolderThatCannotBeEnteredFails)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("file"));
    const ToolRun missing = runTool({folder.path(QStringLiteral("missing"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TEXT(missing.err, QStringLiteral("Cannot change directory:") + folder.path(QStringLiteral("missing")) +
                                 QStringLiteral(":No such file or directory\n"));
    const ToolRun noFolder = runTool({file});
    EXPECT_EQ(noFolder.status, 1);
    EXPECT_TEXT(noFolder.err, QStringLiteral("Cannot change directory:") + file + QStringLiteral(":Not a directory\n"));
}

TEST(GetTimestamps, UsageAndHelp)
{
    EXPECT_EQ(runTool({}).status, 2);
    EXPECT_EQ(runTool({QStringLiteral("a"), QStringLiteral("b")}).status, 2);
    EXPECT_EQ(runTool({QStringLiteral("")}).status, 2);
    EXPECT_TRUE(runTool({}).err.startsWith(QStringLiteral("Usage: gettimestamps FOLDER\n")));
    const ToolRun help = runTool({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(QStringLiteral("Usage: gettimestamps FOLDER\n")));
    EXPECT_EQ(help.err, QStringLiteral(""));
}

TEST(GetTimestamps, DanglingEntryStopsUnreadableOnesArePassedOver)
{
    const TempFolder folder;
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path(QStringLiteral("00000.MPL"))).constData(), 0600), 0);
    folder.makeFolder(QStringLiteral("00001.MPL"));
    QFile huge(folder.makeFile(QStringLiteral("00002.MPL")));
    ASSERT_TRUE(huge.resize(qint64{playlistLimit} + 1));
    folder.makeFile(QStringLiteral("00003.MPL"), playlist(test::zoneUnset, {{.name = "00001", .thumbnail = 1}}));
    const ToolRun run = runTool({folder.path()});
    EXPECT_EQ(run.status, 0);
    EXPECT_TEXT(run.out, QStringLiteral("00001 : clip-2010-05-01 12;34;56\n"));
    EXPECT_TEXT(run.err, QStringLiteral("Error opening file:00000.MPL:not a regular file\n"
                                        "Error opening file:00001.MPL:not a regular file\n"
                                        "Error opening file:00002.MPL:File too large\n"));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), folder.path(QStringLiteral("00000b.MPL"))));
    const ToolRun stopped = runTool({folder.path()});
    EXPECT_EQ(stopped.status, 1);
    EXPECT_EQ(stopped.out, QStringLiteral(""));
    EXPECT_TRUE(
        stopped.err.contains(QStringLiteral("Error getting file stats:00000b.MPL:No such file or directory\n")));
}

TEST(GetTimestamps, UnreadableFileIsPassedOver)
{
    const test::OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("00000.MPL"), "x");
    ASSERT_TRUE(QFile::setPermissions(file, QFileDevice::WriteOwner));
    const ToolRun run = runTool({folder.path()});
    EXPECT_EQ(run.status, 0);
    EXPECT_TEXT(run.err, QStringLiteral("Error opening file:00000.MPL:Permission denied\n"));
}

// The name of an output comes from the real tool through the shell, also on a card with a hostile name.
TEST(GetTimestamps, NamesTheOutputOfAClip)
{
    const TempFolder folder;
    const QString previous = resourcePath();
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    for (const QString& card : {QStringLiteral("card"), QStringLiteral("Bob's; touch pwned; 'x $(touch pwned)")}) {
        const QString clip = folder.makeFile(card + QStringLiteral("/BDMV/STREAM/00001.MTS"), "x");
        folder.makeFile(card + QStringLiteral("/BDMV/PLAYLIST/00000.MPL"),
                        playlist(test::zoneUnset, {{.name = "00001", .thumbnail = 1}}));
        EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2010-05-01 12;34;56-00001"));
    }
    EXPECT_FALSE(test::itemExists(QStringLiteral("pwned")));
    setResourcePath(previous);
}

} // namespace tavrix
