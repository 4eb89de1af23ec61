// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "support/qtprinters.h"

#include <QApplication>
#include <QLabel>
#include <QListView>

namespace tavrix::test
{
namespace
{

class Questions : public WindowTest
{
protected:
    // A batch whose outputs exist already from a run before.
    void runTwice(int clips)
    {
        startProgram();
        analysedClips(clips);
        useDestination();
        runBatch();
        EXPECT_TEXTS(states(), QStringList(clips, rowIcon::success));
        launchesBefore_ = tools_.count(ToolKind::Encode);
    }
    void runBatch()
    {
        robot_->press(QStringLiteral("alertButton0"));
        click("batchEncGoBt");
        EXPECT_TRUE(tools_.finishAll());
        EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    }
    int launchesBefore_ = 0;
};

} // namespace

TEST_F(Questions, KeepForAllAsksOnce)
{
    runTwice(3);
    robot_->press(QStringLiteral("alertButton1"), true);
    runBatch();
    EXPECT_TEXTS(states(), QStringList(3, rowIcon::failure));
    EXPECT_TRUE(rows().data(rows().index(0), Qt::AccessibleTextRole).toString().contains(QStringLiteral(", Kept, ")));
    EXPECT_EQ(tools_.count(ToolKind::Encode), launchesBefore_);
    EXPECT_EQ(robot_->titles.size(), 3);
}

// Nobody remembers which of two hundred clips were in the list when the power went.
TEST_F(Questions, TheListOfAKilledRunComesBack)
{
    startProgram();
    const QStringList clips = analysedClips(3);
    rows().setOut(1, 5);
    settle();
    killProgram();
    tools_.launches.clear();
    QString words;
    robot_->look([&words](QDialog& dialog) { words = dialog.findChild<QLabel*>(QStringLiteral("alertText"))->text(); });
    robot_->press(QStringLiteral("alertButton0"));
    startProgram();
    ASSERT_TRUE(waitFor([this] { return robot_->isDone(); }));
    ASSERT_TRUE(tools_.finishAll());
    EXPECT_TRUE(words.startsWith(QStringLiteral("3 clips were in the list"))) << words.toStdString();
    ASSERT_EQ(rows().count(), 3);
    EXPECT_EQ(rows().row(0).source(), clips.at(0));
    EXPECT_EQ(rows().row(1).out, 5);
    endProgram();
    robot_->titles.clear();
    startProgram();
    EXPECT_TEXTS(robot_->titles, QStringList());
}

TEST_F(Questions, ReplaceIsAskedForEachOutput)
{
    runTwice(2);
    robot_->press(QStringLiteral("alertButton0"));
    robot_->press(QStringLiteral("alertButton0"));
    runBatch();
    EXPECT_TEXTS(states(), QStringList(2, rowIcon::success));
    EXPECT_EQ(tools_.count(ToolKind::Encode), launchesBefore_ + 2);
}

TEST_F(Questions, ReplaceQuestionTimesOutToItsDefault)
{
    runTwice(1);
    QString countdown;
    robot_->look([&countdown](QDialog& dialog) {
        countdown = dialog.findChild<QLabel*>(QStringLiteral("alertCountdown"))->text();
    });
    robot_->waitForTimeOut();
    runBatch();
    EXPECT_TRUE(countdown.startsWith(QStringLiteral("Replaces by itself in "))) << countdown.toStdString();
    EXPECT_TEXTS(states(), QStringList({rowIcon::success}));
    EXPECT_EQ(tools_.count(ToolKind::Encode), launchesBefore_ + 1);
}

// Nothing of the run may be delivered while the question is open.
TEST_F(Questions, DropsWaitUntilTheQuestionIsAnswered)
{
    runTwice(1);
    const QString late = folder_.makeFile(QStringLiteral("late.MTS"), "clip");
    bool analysedMeanwhile = true;
    robot_->look([this, &late, &analysedMeanwhile](QDialog&) {
        drop({late});
        QCoreApplication::processEvents();
        analysedMeanwhile = controller().isAnalysing();
    });
    robot_->press(QStringLiteral("alertButton1"));
    robot_->press(QStringLiteral("alertButton0"));
    click("batchEncGoBt");
    EXPECT_FALSE(analysedMeanwhile);
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 2);
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
}

TEST_F(Questions, StartWithoutDestinationAsksForOne)
{
    startProgram();
    analysedClips(1);
    robot_->press(QStringLiteral("alertButton0"));
    robot_->choose(destination_);
    click("batchEncGoBt");
    EXPECT_EQ(model().mainEncDstPathStr.stringValue(), destination_);
    EXPECT_TRUE(controller().isEncoding());
    EXPECT_TEXTS(robot_->titles, QStringList({localizedString(QStringLiteral("D_go_dossier_destination1"))}));
}

TEST_F(Questions, RevealWithoutDestinationIsASheet)
{
    startProgram();
    EXPECT_FALSE(find<QAbstractButton>("mainEncDstRevealBt")->isEnabled()) << "there is nothing to show";
    trigger("menuReveal");
    auto* sheet = find<QDialog>("alertDialog");
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    robot_->press(QStringLiteral("alertButton0"));
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TRUE(desktop_.opened.isEmpty());
}

TEST_F(Questions, RemovedRowsLeaveListAndFolder)
{
    startProgram();
    analysedClips(3);
    const QString thumbnail = rows().row(1).dico.value(record::imgPathStr).toString();
    ASSERT_TRUE(itemExists(thumbnail));
    auto* list = find<QListView>("encBatchArrayController");
    list->setCurrentIndex(list->model()->index(1, 0));
    click("batchEncRemoveBt");
    EXPECT_EQ(rows().count(), 2);
    EXPECT_FALSE(itemExists(thumbnail));
    EXPECT_EQ(rows().row(1).order, 2);
    // What the view shows as selected is what the model takes for selected.
    const QModelIndexList selected = list->selectionModel()->selectedIndexes();
    EXPECT_EQ(rows().selectedRow(), selected.isEmpty() ? -1 : selected.first().row());

    robot_->press(QStringLiteral("alertButton0")); // Cancel
    click("batchEncRemoveAllBt");
    EXPECT_EQ(rows().count(), 2);
    robot_->press(QStringLiteral("alertButton1")); // Yes
    click("batchEncRemoveAllBt");
    EXPECT_EQ(rows().count(), 0);
    EXPECT_FALSE(find<QWidget>("drawer")->isVisible());
    EXPECT_FALSE(find<QAbstractButton>("batchEncGoBt")->isEnabled());
}

TEST_F(Questions, DeleteKeyRemovesTheSelectedRow)
{
    startProgram();
    analysedClips(2);
    auto* list = find<QListView>("encBatchArrayController");
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Delete);
    ASSERT_EQ(rows().count(), 1);
    EXPECT_EQ(rows().row(0).src, QStringLiteral("clip2.MTS"));
}

TEST_F(Questions, TheOnlyRowIsSelectedWhenTheListGetsTheFocus)
{
    startProgram();
    analysedClips(1);
    EXPECT_EQ(rows().selectedRow(), -1);
    window().activateWindow();
    ASSERT_TRUE(waitFor([this] { return QApplication::activeWindow() == &window(); }));
    find<QListView>("encBatchArrayController")->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(waitFor([this] { return rows().selectedRow() == 0; }));
    EXPECT_TRUE(find<QAbstractButton>("batchEncRemoveBt")->isEnabled());
}

TEST_F(Questions, TheRowBeingEncodedCannotBeRemoved)
{
    startProgram();
    analysedClips(2);
    useDestination();
    click("batchEncGoBt");
    rows().setSelectedRow(0);
    click("batchEncRemoveBt");
    EXPECT_EQ(rows().count(), 2);
    robot_->press(QStringLiteral("alertButton0"));
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
}

TEST_F(Questions, QuitIsCancelledThenConfirmed)
{
    startProgram();
    analysedClips(1);
    useDestination();
    click("batchEncGoBt");
    const FakeTools::Launch launch = tools_.current(ToolKind::Encode);
    tools_.writeFiles(launch);
    robot_->press(QStringLiteral("alertButton0")); // Cancel
    window().close();
    EXPECT_TRUE(window().isVisible());
    ASSERT_TRUE(waitFor([this] { return robot_->isDone(); }));
    settle();
    EXPECT_TRUE(controller().isEncoding());
    EXPECT_EQ(terminations_, 0);

    robot_->press(QStringLiteral("alertButton1")); // Quit
    trigger("menuQuit");
    EXPECT_EQ(terminations_, 1);
    EXPECT_TRUE(program_->hasEnded());
    EXPECT_FALSE(itemExists(launch.output()));
    EXPECT_EQ(rows().count(), 0);
}

TEST_F(Questions, ATerminationSignalEndsAnOpenQuestionAndTheProgram)
{
    runTwice(1);
    const QByteArray before = readBytes(tools_.launches.last().output()).value_or(QByteArray());
    robot_->look([this](QDialog&) { program_->endNow(); });
    click("batchEncGoBt");
    ASSERT_TRUE(waitFor([this] { return program_->hasEnded(); }));
    EXPECT_EQ(terminations_, 1);
    EXPECT_EQ(readBytes(tools_.launches.last().output()).value_or(QByteArray()), before);
    EXPECT_EQ(tools_.count(ToolKind::Encode), launchesBefore_);
}

// Start without a destination: an alert, then the chooser that follows it.
TEST_F(Questions, ATerminationSignalEndsTheChooserThatFollowsAnAlert)
{
    startProgram();
    analysedClips(1);
    robot_->look([this](QDialog&) { program_->endNow(); });
    click("batchEncGoBt");
    ASSERT_TRUE(waitFor([this] { return program_->hasEnded(); }));
    EXPECT_EQ(terminations_, 1);
}

TEST_F(Questions, ATerminationSignalEndsAnOpenChooserAndTheProgram)
{
    startProgram();
    robot_->lookAtChooser([this](QDialog&) { program_->endNow(); });
    trigger("menuOpenFiles");
    ASSERT_TRUE(waitFor([this] { return program_->hasEnded(); }));
    EXPECT_EQ(terminations_, 1);
}

TEST_F(Questions, ASecondCopyIsRefused)
{
    startProgram();
    robot_->press(QStringLiteral("alertButton0"));
    {
        // The same lock, as another process would find it.
        FakeTools others;
        WindowProgram second([] {});
        second.face().setRedirectsOutput(false);
        EXPECT_FALSE(second.start());
        EXPECT_FALSE(second.window().isVisible());
    }
    EXPECT_TEXTS(robot_->titles, QStringList({localizedString(QStringLiteral("D_appAlreadyOpened_1"))}));
    EXPECT_TRUE(window().isVisible());
}

TEST_F(Questions, AnOpenRequestWhileAnalysingIsRefusedWithANotice)
{
    startProgram();
    program_->openFiles({folder_.makeFile(QStringLiteral("first.MTS"))});
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    program_->openFiles({folder_.makeFile(QStringLiteral("second.MTS"))});
    ASSERT_TRUE(waitFor([this] {
        return find<QLabel>("noticeStr")->text() == QStringLiteral("Still reading clips: drop these again in a moment");
    }));
    EXPECT_EQ(model().dragndropImgView.imageName(), QStringLiteral("dndOff"));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 1);
    EXPECT_EQ(model().dragndropImgView.imageName(), QStringLiteral("dnd"));
}

} // namespace tavrix::test
