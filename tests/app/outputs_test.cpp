// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/files/fileops.h"
#include "base/store/preferences.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr int replaceButton = 0;
constexpr int keepButton = 1;
constexpr int timeOut = -1;

class ExistingOutput : public ControllerTest
{
protected:
    // Rows whose outputs exist already.
    void prepare(int count)
    {
        sources = makeClips(count);
        addRows(sources);
        folder.makeFolder(QStringLiteral("destination/Tavrix events"));
        for (const QString& source : sources) {
            ASSERT_TRUE(makeSparseFile(outputOf(source), 777));
        }
        face.alerts.clear();
        face.events.clear();
    }

    // Clips in folders of their own whose outputs get one name: same file name, same second.
    QStringList twinClips(const QStringList& folders)
    {
        const QDateTime second(QDate(2010, 5, 1), QTime(12, 34, 56));
        QStringList twins;
        for (const QString& name : folders) {
            twins << clip(name + QStringLiteral("/a.mts"));
            QFile file(twins.last());
            EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(second, QFile::FileModificationTime));
            EXPECT_TEXT(outputOf(twins.last()), outputOf(twins.first()));
        }
        return twins;
    }

    [[nodiscard]] int questions() const
    {
        int found = 0;
        for (const AlertRequest& alert : face.alerts) {
            found += alert.hasCheckBox ? 1 : 0;
        }
        return found;
    }

    [[nodiscard]] bool isOld(int row) { return QFile(outputOf(sources.at(row))).size() == qint64{777} * 1024; }

    QStringList sources;
};

} // namespace

TEST_F(ExistingOutput, QuestionIsPlainTimedAndNamesTheFile)
{
    prepare(1);
    face.answer(keepButton);
    runBatch();
    const AlertRequest& alert = face.alerts.first();
    EXPECT_TEXT(alert.title,
                QStringLiteral("A converted clip of this name already exists. Do you want to replace it?"));
    const QString name = outputOf(sources.at(0)).mid(events.size() + 1);
    const QStringList lines = alert.text.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.at(0).startsWith(QStringLiteral("There: ") + name + QStringLiteral(", 796 kB, ")))
        << lines.at(0).toStdString();
    EXPECT_TRUE(lines.at(1).startsWith(QStringLiteral("New, from: clip01.mts, 0 kB, "))) << lines.at(1).toStdString();
    EXPECT_TEXTS(alert.buttons,
                 QStringList({QStringLiteral("Replace"), QStringLiteral("Keep"), QStringLiteral("Stop the batch")}));
    EXPECT_TRUE(alert.hasCheckBox);
    EXPECT_TEXT(alert.checkBoxTitle, QStringLiteral("Apply to all clips of this batch"));
    EXPECT_EQ(alert.seconds, 60);
}

// Video libraries sort by the file's date; the source's own stays what it is.
TEST_F(ExistingOutput, TheOutputHasTheDateOfTheRecording)
{
    const QString source = clip(QStringLiteral("a.mts"));
    constexpr qint64 shot = 1272709996;
    ASSERT_TRUE(setModificationTime(source, shot));
    addRows({source});
    EXPECT_TEXT(rows().row(0).dico.value(record::recordingDateSource).toString(), QStringLiteral("file"));
    EXPECT_FALSE(rows().row(0).dico.value(record::recordingDate).toString().isEmpty());
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(QFileInfo(outputOf(source)).lastModified().toSecsSinceEpoch(), shot);
    EXPECT_EQ(QFileInfo(source).lastModified().toSecsSinceEpoch(), shot);
}

TEST_F(ExistingOutput, TheBatchIsStoppedFromTheQuestion)
{
    prepare(3);
    QFile::remove(outputOf(sources.at(0)));
    constexpr int stopButton = 2;
    face.answer(stopButton, true);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure puce"));
    EXPECT_EQ(questions(), 1);
    EXPECT_TRUE(isOld(1));
    EXPECT_TRUE(isOld(2));
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    expectIdle();
}

TEST_F(ExistingOutput, KeptWithTheBoxTickedIsKeptWithoutAskingFromThenOn)
{
    prepare(3);
    QFile::remove(outputOf(sources.at(0)));
    face.answer(keepButton, true);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure puceFailure"));
    EXPECT_EQ(questions(), 1);
    EXPECT_TRUE(isOld(1));
    EXPECT_TRUE(isOld(2));
    EXPECT_TEXT(rows().row(1).reason, QStringLiteral("a file with this name already existed and was kept"));
    EXPECT_FALSE(resumeLog().contains(sources.at(1)));
    expectIdle();
}

TEST_F(ExistingOutput, AnswersWithoutTheBoxAreAskedEachTime)
{
    prepare(4);
    face.answer(replaceButton);
    face.answer(keepButton);
    face.answer(replaceButton, true);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure puceSuccess puceSuccess"));
    EXPECT_EQ(questions(), 3);
    EXPECT_FALSE(isOld(0));
    EXPECT_TRUE(isOld(1));
    EXPECT_FALSE(isOld(3));
    expectIdle();
}

TEST_F(ExistingOutput, StoredAnswerEndsWithTheBatch)
{
    prepare(1);
    face.answer(keepButton, true);
    runBatch();
    EXPECT_EQ(questions(), 1);
    face.answer(replaceButton);
    runBatch();
    EXPECT_EQ(questions(), 2);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(ExistingOutput, TimeOutReplaces)
{
    prepare(1);
    face.answer(timeOut);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_FALSE(isOld(0));
}

TEST_F(ExistingOutput, ChoiceMadeBeforehandAsksNothing)
{
    prepare(2);
    controller->setReplacePolicy(0);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure"));
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(questions(), 0);
    controller->setReplacePolicy(std::nullopt);
    face.answer(keepButton, true);
    runBatch();
    EXPECT_EQ(questions(), 1);
}

TEST_F(ExistingOutput, ManyKeptRowsDoNotGrowTheStack)
{
    const QuietErrorStream quiet;
    constexpr int count = 300;
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    for (const QString& source : makeClips(count)) {
        appendRow(source);
        ASSERT_TRUE(makeSparseFile(outputOf(source), 300));
    }
    face.answer(keepButton, true);
    EXPECT_LE(stackBetweenRows(), 4096U);
    EXPECT_EQ(questions(), 1);
    EXPECT_EQ(icons().count(rowIcon::failure), count);
    expectIdle();
}

TEST_F(ExistingOutput, TwoClipsWithOneOutputNameDoNotDestroyEachOther)
{
    const QStringList twins = twinClips({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
    addRows(twins);
    controller->setReplacePolicy(1);
    prefWrite(pref::replaceFilesCheck, 1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure puceFailure"));
    EXPECT_TEXT(rows().row(1).reason, QStringLiteral("another clip of this batch has the same output name"));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("failure             : another clip of this batch has the same "
                                                    "output name (") +
                                     outputOf(twins.at(0)) + QStringLiteral(")\n")));
    EXPECT_EQ(questions(), 0);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    expectIdle();
}

TEST_F(ExistingOutput, OutputOfThisBatchIsKnownUnderAnotherNameOfItsFolder)
{
    addRows(twinClips({QStringLiteral("one"), QStringLiteral("two")}));
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_EQ(::symlink(qPrintable(destination), qPrintable(link)), 0);
    controller->setReplacePolicy(1);
    pressStart();
    model().mainEncDstPathStr.setStringValue(link);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure"));
    EXPECT_TEXT(rows().row(1).reason, QStringLiteral("another clip of this batch has the same output name"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
}

TEST_F(ExistingOutput, NextBatchMayReplaceWhatTheOneBeforeWrote)
{
    sources = makeClips(1);
    addRows(sources);
    runBatch();
    face.answer(replaceButton);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
}

TEST_F(ExistingOutput, SourceIsNeverOverwritten)
{
    const QString first = clip(QStringLiteral("a.mov"));
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    const QString second = outputOf(first);
    ASSERT_TRUE(writeBytes(second, "precious"));
    for (const QString& source : {first, second}) {
        BatchRow row;
        row.out = 3;
        row.dico = {{record::mainEncSrcPathStr, source}, {record::v0_codec, QStringLiteral("h264")}};
        rows().append(row);
    }
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_TEXT(rows().row(0).resultat, rowIcon::failure);
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("the output would overwrite one of the sources"));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("failure             : the output would overwrite")));
    EXPECT_EQ(readBytes(second), QByteArray("precious"));
}

TEST_F(ExistingOutput, HardLinkOfASourceIsNeverOverwritten)
{
    const QString source = clip(QStringLiteral("a.mov"));
    addRows({source});
    tools.clips[source].wrapper = QStringLiteral("mov");
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_EQ(::link(qPrintable(source), qPrintable(outputOf(source))), 0);
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_EQ(readBytes(source), QByteArray("clip"));
}

TEST_F(ExistingOutput, DropWhileTheQuestionIsOpenWaits)
{
    prepare(1);
    const QString other = clip(QStringLiteral("other.mts"));
    face.answers.push_back([&](const AlertRequest&) {
        controller->dragNDropPerformDrag(nullptr, {other});
        EXPECT_EQ(tools.count(ToolKind::Encode), 0);
        return AlertOutcome{replaceButton, false};
    });
    pressStart();
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    EXPECT_EQ(tools.count(ToolKind::Decode), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}
