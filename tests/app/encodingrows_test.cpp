// SPDX-License-Identifier: GPL-3.0-or-later
#include "encodingfixture.h"

#include "base/text/paths.h"

#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

TEST_F(Encoding, VanishedFirstSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(0));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(face.count(alertEvent("D_batch_2")), 1);
    EXPECT_EQ(rows().row(0).order, 1);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedMiddleSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(1));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_TEXT(sourceOf(1), sources.at(2));
    // The finish of the vanished row must not be taken for a second finish of the row before it.
    EXPECT_EQ(resumeLog().count(QStringLiteral("speed ")), 2);
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedLastSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(2));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(resumeLog().count(QStringLiteral("speed ")), 2);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedOnlySource)
{
    const QStringList sources = makeClips(1);
    addRows(sources);
    const QString image = rows().row(0).img;
    EXPECT_TRUE(itemExists(image));
    QFile::remove(sources.at(0));
    runBatch();
    EXPECT_EQ(rows().count(), 0);
    EXPECT_FALSE(model().drawer.isOpen());
    EXPECT_FALSE(itemExists(image));
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("speed ")));
    expectNormalEnd();
}

TEST_F(Encoding, AllSourcesVanished)
{
    const QStringList sources = makeClips(4);
    addRows(sources);
    for (const QString& source : sources) {
        QFile::remove(source);
    }
    runBatch();
    EXPECT_EQ(rows().count(), 0);
    EXPECT_EQ(face.count(alertEvent("D_batch_2")), 4);
    expectNormalEnd();
}

TEST_F(Encoding, SourceThatVanishesDuringTheBatch)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    pressStart();
    QFile::remove(sources.at(1));
    QFile::remove(sources.at(2));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    expectNormalEnd();
}

TEST_F(Encoding, MissingSourceAlertNamesTheFileAndCloses)
{
    const QString source = clip(QStringLiteral("50% <b>x %@.mts"));
    addRows({source});
    QFile::remove(source);
    runBatch();
    const AlertRequest& alert = face.alerts.first();
    EXPECT_TRUE(alert.text.contains(QStringLiteral("50% <b>x %@.mts"))) << alert.text.toStdString();
    EXPECT_EQ(alert.seconds, 10);
    EXPECT_TEXTS(alert.buttons, QStringList(QStringLiteral("OK")));
}

TEST_F(Encoding, NotEnoughSpaceFailsTheRow)
{
    const QStringList sources = makeClips(2);
    addRows(sources);
    setFreeSpaceForTests(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure"));
    EXPECT_EQ(face.count(alertEvent("D_keep")), 2);
    EXPECT_TEXT(face.alerts.first().text, QStringLiteral("Keep"));
    EXPECT_EQ(face.alerts.first().seconds, 0);
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("----------")));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("not enough free space in the destination"));
    expectNormalEnd();
}

TEST_F(Encoding, ExactlyEnoughSpaceIsEnough)
{
    // Of this clip nothing is known that a truer estimate could be made of.
    BatchRow row;
    row.out = 4;
    row.dico = {{record::mainEncSrcPathStr, clip(QStringLiteral("a.mts"))},
                {record::v0_codec, QStringLiteral("h264")},
                {record::w_duration, 60}};
    rows().append(row);
    setFreeSpaceForTests(6);
    pressStart();
    EXPECT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    setFreeSpaceForTests(5);
    QFile::remove(rows().row(0).output);
    pressStart();
    EXPECT_TRUE(tools.running().isEmpty());
}

TEST_F(Encoding, RowWithoutAPathGetsNoCommand)
{
    addRows(makeClips(1));
    BatchRow row;
    row.out = 3;
    row.dico.insert(record::v0_codec, QStringLiteral("h264"));
    rows().append(row);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    expectNormalEnd();
}

TEST_F(Encoding, NoDestinationAsksForAFolder)
{
    addRows(makeClips(1));
    face.events.clear();
    model().mainEncDstPathStr.setStringValue(QString());
    pressStart();
    EXPECT_TEXTS(face.events, QStringList({alertEvent("D_go_dossier_destination1"), QStringLiteral("choose")}));
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
    face.folders << destination;
    runBatch();
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Encoding, MissingDestinationFallsBackToTheDefault)
{
    addRows(makeClips(1));
    prefWrite(pref::prefDefautDstPathStr, destination);
    model().mainEncDstPathStr.setStringValue(folder.path(QStringLiteral("gone")));
    face.events.clear();
    runBatch();
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
    EXPECT_EQ(face.count(QStringLiteral("choose")), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

// What was typed was once wiped when the question was cancelled.
TEST_F(Encoding, MissingDestinationWithoutDefaultAsks)
{
    addRows(makeClips(1));
    model().mainEncDstPathStr.setStringValue(folder.path(QStringLiteral("gone")));
    face.events.clear();
    constexpr int chooseAnother = 1;
    face.answer(chooseAnother);
    pressStart();
    EXPECT_TEXTS(face.events, QStringList({alertEvent("D_go_dossier_destination2"), QStringLiteral("choose")}));
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), folder.path(QStringLiteral("gone")));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("gone"))));
    EXPECT_TRUE(tools.running().isEmpty());
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
}

TEST_F(Encoding, MissingDestinationIsMadeWhenThatIsWished)
{
    addRows(makeClips(1));
    const QString wished = folder.path(QStringLiteral("new/deep"));
    model().mainEncDstPathStr.setStringValue(wished);
    constexpr int cancel = 2;
    face.answer(cancel);
    pressStart();
    EXPECT_FALSE(itemExists(wished));
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), wished);
    EXPECT_TRUE(tools.running().isEmpty());
    constexpr int makeIt = 0;
    face.answer(makeIt);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_TRUE(itemExists(wished + QStringLiteral("/Tavrix events")));
}

TEST_F(Encoding, DestinationTypedWithATildeIsInTheHomeFolder)
{
    addRows(makeClips(1));
    prefWrite(pref::prefDefautDstPathStr, destination);
    const QString typed = homeFolder() + QStringLiteral("/typed");
    ASSERT_TRUE(QDir().mkpath(typed));
    model().mainEncDstPathStr.setStringValue(QStringLiteral("~/typed"));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_TRUE(rows().row(0).output.startsWith(typed + QStringLiteral("/Tavrix events/")));
    QDir(typed).removeRecursively();
}

TEST_F(Encoding, DestinationClearedDuringTheBatchFailsTheNextRow)
{
    addRows(makeClips(2));
    pressStart();
    model().mainEncDstPathStr.setStringValue(QString());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure"));
    EXPECT_FALSE(itemExists(QStringLiteral("/Tavrix events")));
    EXPECT_EQ(face.count(sheetEvent("D_go_dossier_destination1")), 1);
    EXPECT_EQ(ends, 1);
    expectIdle();
}

TEST_F(Encoding, DestinationChangedDuringTheBatchIsUsedByTheNextRow)
{
    addRows(makeClips(2));
    pressStart();
    const QString other = folder.makeFolder(QStringLiteral("other"));
    model().mainEncDstPathStr.setStringValue(other);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TRUE(rows().row(0).output.startsWith(destination));
    EXPECT_TRUE(rows().row(1).output.startsWith(other));
}

TEST_F(Encoding, EventsFolderThatCannotBeMadeFailsTheRows)
{
    folder.makeFile(QStringLiteral("destination/Tavrix events"), "in the way");
    addRows(makeClips(2));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure"));
    EXPECT_TEXT(rows().row(0).reason, events + QStringLiteral(": this folder cannot be made or written"));
    EXPECT_EQ(ends, 1);
    expectIdle();
}

TEST_F(Encoding, FormatOfTheRowIsTheOneInForce)
{
    addRows(makeClips(2));
    rows().setOut(0, 0);
    rows().setOut(1, 1);
    runBatch();
    EXPECT_TRUE(rows().row(0).output.endsWith(QLatin1String(".mp4")));
    EXPECT_TRUE(rows().row(1).output.endsWith(QLatin1String(".m4v")));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("format              : 1\n")));
}

TEST_F(Encoding, NameThatIsTooLongForTheFileSystemIsCut)
{
    const QString source = clip(QString(240, u'x') + QStringLiteral(".mts"));
    addRows({source});
    ASSERT_EQ(rows().count(), 1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(rows().row(0).output.mid(rows().row(0).output.lastIndexOf(u'/') + 1).toUtf8().size(), 255);
}

TEST_F(Encoding, PreviousRowRemovedMeanwhileStartsAgainAtTheFirst)
{
    addRows(makeClips(3));
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_EQ(controller->encBatchInprogressRowIdentification(), 1);
    rows().setSelectedRow(0);
    controller->encBatchRemove(&model().batchEncRemoveBt);
    EXPECT_EQ(controller->encBatchInprogressRowIdentification(), 0);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 3);
    expectNormalEnd();
}
