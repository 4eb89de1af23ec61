// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "process/notificationcenter.h"

#include <QFile>

#include <utility>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QString endSheet()
{
    return sheetEvent("D_fin_GUI");
}

QString stopAlert()
{
    return alertEvent("D_action_stop");
}

class Stop : public ControllerTest
{
protected:
    void begin(int count)
    {
        sources = makeClips(count);
        addRows(sources);
        face.events.clear();
        QObject::connect(controller.get(), &appDelegate::batchEnded, controller.get(),
                         [this](bool byStop) { ends << byStop; });
        pressStart();
    }

    void expectStoppedEnd()
    {
        EXPECT_EQ(ends, QList<bool>{true});
        EXPECT_EQ(face.count(stopAlert()), 1);
        EXPECT_EQ(face.count(endSheet()), 1);
        EXPECT_GT(face.events.indexOf(endSheet()), face.events.indexOf(stopAlert()));
        EXPECT_TEXT(face.events.last(), QStringLiteral("open:") + events);
        EXPECT_TEXT(prefRead(pref::encCurrentProcessingFile), QStringLiteral("cancel"));
        EXPECT_EQ(controller->encBatchInprogressRowIdentification(), -1);
        expectIdle();
    }

    // The output that stood there before stays, and no child is started for the row.
    void stopUnderTheReplaceQuestion(int answer)
    {
        addRows(makeClips(1));
        folder.makeFolder(QStringLiteral("destination/Tavrix events"));
        const QString output = outputOf(sourceOf(0));
        ASSERT_TRUE(makeSparseFile(output, 777));
        int reports = 0;
        QObject::connect(controller.get(), &appDelegate::rowFinished, controller.get(), [&reports] { ++reports; });
        bool pressed = false;
        face.whileOpen = [&](const AlertRequest&) {
            if (!std::exchange(pressed, true)) {
                pressStop();
            }
        };
        face.otherwise = [answer](const AlertRequest& request) {
            return AlertOutcome{request.hasCheckBox ? answer : 0, false};
        };
        pressStart();
        EXPECT_EQ(tools.count(ToolKind::Encode), 0);
        EXPECT_EQ(QFile(output).size(), qint64{777} * 1024);
        EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
        EXPECT_TEXT(rows().row(0).reason, QStringLiteral("stopped"));
        EXPECT_EQ(reports, 1);
        expectIdle();
    }

    void stopUnderTheMissingSourceAlert(int missing)
    {
        QList<bool> finished;
        const QObject watcher;
        QObject::connect(controller.get(), &appDelegate::rowFinished, &watcher,
                         [&finished](int, bool success) { finished << success; });
        face.whileOpen = [this](const AlertRequest& request) {
            if (request.title == localizedString(QStringLiteral("D_batch_2"))) {
                pressStop();
            }
        };
        sources = makeClips(3);
        addRows(sources);
        face.events.clear();
        QObject::connect(controller.get(), &appDelegate::batchEnded, controller.get(),
                         [this](bool byStop) { ends << byStop; });
        ASSERT_TRUE(QFile::remove(sources.at(missing)));
        runBatch();
        EXPECT_EQ(tools.count(ToolKind::Encode), missing);
        EXPECT_EQ(finished, QList<bool>(missing, true));
        EXPECT_EQ(rows().count(), 2);
        EXPECT_FALSE(icons().contains(rowIcon::failure)) << icons().toStdString();
        expectStoppedEnd();
    }

    QStringList sources;
    QList<bool> ends;
};

} // namespace

TEST_F(Stop, DuringTheFirstPassDeletesTheOutputAndEndsTheBatch)
{
    begin(3);
    const FakeTools::Launch launch = tools.running().last();
    tools.writeFiles(launch);
    ASSERT_TRUE(itemExists(launch.output()));
    pressStop();
    EXPECT_FALSE(itemExists(launch.output()));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puce puce"));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("stopped"));
    EXPECT_TRUE(log.contains(QStringLiteral("process             : stop")));
    EXPECT_TRUE(log.contains(QStringLiteral("enc stop = 1")));
    EXPECT_TRUE(log.contains(QStringLiteral("interrupted")));
    EXPECT_EQ(tools.launches.last().kind, ToolKind::Encode);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    expectStoppedEnd();
}

TEST_F(Stop, DeselectsTheControl)
{
    begin(1);
    pressStop();
    EXPECT_EQ(model().encStopBt.selectedSegment(), -1);
}

TEST_F(Stop, NextBatchStartsAtTheFirstRow)
{
    begin(2);
    pressStop();
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_TRUE(rows().row(0).reason.isNull());
    EXPECT_EQ(tools.count(ToolKind::Encode), 3);
    expectIdle();
}

TEST_F(Stop, OutputMadeWhileTheAlertIsOpenIsDeletedToo)
{
    begin(2);
    const FakeTools::Launch launch = tools.running().last();
    face.whileOpen = [&](const AlertRequest&) {
        tools.writeFiles(launch);
    };
    pressStop();
    EXPECT_FALSE(itemExists(launch.output()));
    expectStoppedEnd();
}

TEST_F(Stop, EncoderThatEndsWhileTheAlertIsOpen)
{
    begin(2);
    const FakeTools::Launch launch = tools.running().last();
    face.whileOpen = [&](const AlertRequest&) {
        tools.finish(launch);
        settleUnderAnAlert();
        EXPECT_TRUE(controller->isEncoding());
    };
    pressStop();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puce"));
    EXPECT_FALSE(itemExists(launch.output()));
    expectStoppedEnd();
}

TEST_F(Stop, OutputThatStoodThereBeforeStays)
{
    sources = makeClips(1);
    addRows(sources);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(sources.at(0)), 777));
    controller->setReplacePolicy(1);
    pressStart();
    pressStop();
    EXPECT_EQ(QFile(outputOf(sources.at(0))).size(), 777 * 1024);
    expectIdle();
}

TEST_F(Stop, UnderTheReplaceQuestionThatIsAnsweredWithKeep)
{
    constexpr int keepButton = 1;
    stopUnderTheReplaceQuestion(keepButton);
}

TEST_F(Stop, UnderTheReplaceQuestionThatIsAnsweredWithReplace)
{
    constexpr int replaceButton = 0;
    stopUnderTheReplaceQuestion(replaceButton);
}

// The batch once began again at its first row, and the row before the missing one was told of twice.
TEST_F(Stop, UnderTheMissingSourceAlertOfTheFirstRowEndsTheBatch)
{
    stopUnderTheMissingSourceAlert(0);
}

TEST_F(Stop, UnderTheMissingSourceAlertOfALaterRowEndsTheBatch)
{
    stopUnderTheMissingSourceAlert(1);
}

TEST_F(Stop, UnderTheQuestionForADestinationStartsNothingAndIsForgotten)
{
    sources = makeClips(1);
    addRows(sources);
    model().mainEncDstPathStr.setStringValue(QString());
    face.folders << destination;
    face.answers.push_back([this](const AlertRequest&) {
        pressStop();
        return AlertOutcome{};
    });
    pressStart();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_EQ(face.count(QStringLiteral("choose")), 0);
    expectIdle();
    model().mainEncDstPathStr.setStringValue(destination);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    expectIdle();
}

TEST_F(Stop, WhilePausedResumesTheDyingChildOnly)
{
    begin(2);
    pressPause();
    EXPECT_TRUE(tools.running().last().launcher->isSuspended());
    pressStop();
    EXPECT_TRUE(log.contains(QStringLiteral("task resumed")));
    expectStoppedEnd();
    pressStart();
    EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause), controlImage::pause);
    pressStop();
}

TEST_F(Stop, RowNamedCancelIsNotTakenForTheCurrentOne)
{
    QFile::remove(QStringLiteral("/cancel"));
    sources = makeClips(2);
    BatchRow row;
    row.dico = {{record::mainEncSrcPathStr, cancelMark}};
    addRows({sources.at(0)});
    rows().append(row);
    addRows({sources.at(1)});
    QObject::connect(controller.get(), &appDelegate::batchEnded, controller.get(),
                     [this](bool byStop) { ends << byStop; });
    face.events.clear();
    pressStart();
    pressStop();
    EXPECT_TEXT(rows().row(0).resultat, rowIcon::failure);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    expectStoppedEnd();
    // Its source does not exist, so the next batch takes it off the list.
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(Stop, WithNoChildIsSwallowedByTheNextStart)
{
    begin(1);
    ASSERT_TRUE(tools.finishAll());
    ends.clear();
    pressStop();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    pressStart();
    settle();
    EXPECT_EQ(ends, QList<bool>{true});
    EXPECT_TRUE(tools.running().isEmpty());
    expectIdle();
}

TEST_F(Stop, StoredReplaceAnswerIsForgotten)
{
    begin(2);
    prefWrite(pref::replaceFilesCheck, 1);
    pressStop();
    expectStoppedEnd();
}

TEST_F(Stop, ControlNotificationIsNoStopOfTheBatch)
{
    begin(2);
    NotificationCenter::defaultCenter().post(fabKillTasks, tools.running().last().launcher->uid());
    settle();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceCurrent"));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess"));
    expectIdle();
}

TEST_F(Stop, PauseAndResume)
{
    begin(1);
    const QPointer<FakeLauncher> launcher = tools.running().last().launcher;
    pressPause();
    EXPECT_TRUE(launcher->isSuspended());
    EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause), controlImage::play);
    EXPECT_EQ(model().encStopBt.selectedSegment(), -1);
    pressPause();
    EXPECT_FALSE(launcher->isSuspended());
    EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause), controlImage::pause);
    for (const char* line :
         {"process             : pause", "task suspended", "process             : play", "task resumed"}) {
        EXPECT_EQ(log.lines().count(QString::fromUtf8(line)), 1) << line;
    }
    ASSERT_TRUE(tools.finishAll());
    expectIdle();
}

TEST_F(Stop, NextRowAfterAPausedOneShowsPause)
{
    begin(2);
    pressPause();
    // Killed from outside while it is stopped.
    tools.running().last().launcher->end(9);
    settle();
    EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause), controlImage::pause);
    EXPECT_FALSE(tools.running().last().launcher->isSuspended());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess"));
}

TEST_F(Stop, NoSegmentIsNoAction)
{
    begin(1);
    model().encStopBt.setSelectedSegment(-1);
    controller->iba_encStopBt(&model().encStopBt);
    EXPECT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}
