// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "base/store/preferences.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/batchview.h"
#include "support/qtprinters.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>

namespace tavrix::test
{
namespace
{

class WindowRows : public WindowTest
{
protected:
    void prepare(int clips)
    {
        startProgram();
        analysedClips(clips);
        useDestination();
        window().activateWindow();
        EXPECT_TRUE(waitFor([this] { return QApplication::activeWindow() == &window(); }));
    }
    [[nodiscard]] BatchView& list() { return window().batchDrawer().view(); }
    [[nodiscard]] QString order()
    {
        QStringList names;
        for (int i = 0; i < rows().count(); ++i) {
            names << rows().row(i).src.mid(4, 1);
        }
        return names.join(QString());
    }
    // Ends the child of the row that runs, and of the pass.
    void endPass() { tools_.finish(tools_.current(ToolKind::Encode)); }
    [[nodiscard]] static QString focused()
    {
        const QWidget* widget = QApplication::focusWidget();
        return widget != nullptr ? widget->objectName() : QString();
    }
};

} // namespace

// The focus fell into the list, selected a row that nobody had chosen, and Delete removed it.
TEST_F(WindowRows, StartMovesTheFocusToPauseAndSelectsNothing)
{
    prepare(3);
    auto* start = find<QWidget>("batchEncGoBt");
    start->setFocus();
    ASSERT_TRUE(waitFor([start] { return start->hasFocus(); }));
    QTest::keyClick(start, Qt::Key_Space);
    ASSERT_TRUE(controller().isEncoding());
    EXPECT_TEXT(focused(), QStringLiteral("encStopBt.0"));
    EXPECT_TRUE(rows().selectedRows().isEmpty());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(rows().count(), 3);
}

// At the end of a row the control was hidden for a moment, and the focus went to the format box of a row.
TEST_F(WindowRows, PauseKeepsTheFocusFromRowToRow)
{
    prepare(3);
    click("batchEncGoBt");
    QStringList met;
    QObject::connect(&controller(), &appDelegate::rowStarted, &window(), [&met] { met << focused(); });
    robot_->press(QStringLiteral("alertButton0"));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TEXTS(met, QStringList(2, QStringLiteral("encStopBt.0")));
    EXPECT_FALSE(find<QWidget>("encStopBt.0")->isVisible());
    EXPECT_TRUE(rows().selectedRows().isEmpty());
}

TEST_F(WindowRows, AClickIntoTheEmptyPartOfTheWindowSelectsNoRow)
{
    prepare(2);
    list().setFocus(Qt::MouseFocusReason);
    settle();
    EXPECT_TRUE(rows().selectedRows().isEmpty());
}

TEST_F(WindowRows, AllRowsGetAFormatAndGo)
{
    prepare(4);
    list().setFocus();
    ASSERT_TRUE(waitFor([this] { return list().hasFocus(); }));
    QTest::keyClick(&window(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(rows().selectedRows().size(), 4);
    auto* format = find<QComboBox>("rowFormatBt");
    Q_EMIT format->activated(1);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rows().row(i).out, 1) << i;
    }
    EXPECT_TRUE(waitFor([format] { return format->currentIndex() == 1; }));
    rows().setOut(0, 0);
    EXPECT_TRUE(waitFor([format] { return format->currentIndex() == -1; }));
    EXPECT_TEXT(format->placeholderText(), QStringLiteral("(several)"));
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(rows().count(), 0);
}

TEST_F(WindowRows, ShiftSelectsARangeAndDeleteRemovesItAlone)
{
    prepare(5);
    list().setCurrentIndex(rows().index(1));
    QTest::keyClick(&list(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&list(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(rows().selectedRows().size(), 3);
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_TEXT(order(), QStringLiteral("15"));
}

TEST_F(WindowRows, TheRunningRowIsSparedWhenAllAreRemoved)
{
    prepare(3);
    click("batchEncGoBt");
    list().selectAll();
    robot_->press(QStringLiteral("alertButton0"));
    click("batchEncRemoveBt");
    EXPECT_TEXT(order(), QStringLiteral("1"));
    EXPECT_TRUE(controller().isEncoding());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
}

TEST_F(WindowRows, RowsAreMovedByKey)
{
    prepare(4);
    list().setCurrentIndex(rows().index(3));
    trigger("menuMoveUp");
    trigger("menuMoveUp");
    EXPECT_TEXT(order(), QStringLiteral("1423"));
    EXPECT_EQ(rows().selectedRow(), 1);
    EXPECT_EQ(list().currentIndex().row(), 1);
    trigger("menuMoveDown");
    EXPECT_TEXT(order(), QStringLiteral("1243"));
    EXPECT_EQ(rows().row(2).order, 3);
    rows().setSelectedRows({0, 1});
    trigger("menuMoveUp");
    EXPECT_TEXT(order(), QStringLiteral("1243"));
    trigger("menuMoveDown");
    EXPECT_TEXT(order(), QStringLiteral("4123"));
}

// The rows run in the order that they stand in; what has run or runs stays where it is.
TEST_F(WindowRows, RowsBehindTheRunningOneAreMoved)
{
    prepare(4);
    click("batchEncGoBt");
    endPass();
    ASSERT_TRUE(rows().row(1).isCurrent());
    EXPECT_EQ(rows().firstMovableRow(), 2);
    EXPECT_FALSE(rows().flags(rows().index(1)).testFlag(Qt::ItemIsDragEnabled));
    EXPECT_TRUE(rows().flags(rows().index(2)).testFlag(Qt::ItemIsDragEnabled));
    rows().setSelectedRow(3);
    trigger("menuMoveUp");
    trigger("menuMoveUp");
    EXPECT_TEXT(order(), QStringLiteral("1243"));
    EXPECT_FALSE(rows().moveRows({}, 0, 1, {}, 4));
    QStringList ran;
    QObject::connect(&controller(), &appDelegate::rowStarted, &window(),
                     [this, &ran](int row) { ran << rows().row(row).src; });
    robot_->press(QStringLiteral("alertButton0"));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TEXTS(ran, QStringList({QStringLiteral("clip4.MTS"), QStringLiteral("clip3.MTS")}));
}

TEST_F(WindowRows, AfterAStopTheRestGoesOn)
{
    prepare(3);
    click("batchEncGoBt");
    EXPECT_FALSE(find<QWidget>("goOnBt")->isVisible());
    endPass();
    robot_->press(QStringLiteral("alertButton0"));
    robot_->press(QStringLiteral("alertButton0"));
    click("encStopBt.1");
    ASSERT_TRUE(waitFor([this] { return robot_->isDone() && model().batchEncGoBt.state() == 0; }));
    EXPECT_TRUE(waitFor([this] { return find<QWidget>("goOnBt")->isVisible(); }));
    robot_->press(QStringLiteral("alertButton0"));
    click("goOnBt");
    EXPECT_TEXT(order(), QStringLiteral("23"));
    EXPECT_TRUE(rows().row(0).isCurrent());
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    EXPECT_TRUE(waitFor([this] { return !find<QWidget>("goOnBt")->isVisible(); }));
    EXPECT_TRUE(waitFor([this] { return find<QAction>("menuRemoveConverted")->isEnabled(); }));
    trigger("menuRemoveConverted");
    EXPECT_EQ(rows().count(), 0);
}

TEST_F(WindowRows, WaitingClipsAreToldWhenTheFormatOfNewOnesChanges)
{
    prepare(2);
    settle();
    auto* words = find<QLabel>("waitingFormatStr");
    EXPECT_FALSE(words->isVisible());
    Q_EMIT find<QComboBox>("formatBt")->activated(5);
    EXPECT_TEXT(prefRead(QStringLiteral("prefCheckMatrix")), QStringLiteral("5"));
    EXPECT_TRUE(words->isVisible());
    EXPECT_TEXT(words->text(), QStringLiteral("2 waiting clips keep QuickTime."));
    EXPECT_EQ(rows().row(0).out, 3);
    click("useForWaitingBt");
    EXPECT_EQ(rows().row(0).out, 5);
    EXPECT_EQ(rows().row(1).out, 5);
    EXPECT_TRUE(waitFor([words] { return !words->isVisible(); }));
}

TEST_F(WindowRows, TheDestinationComesBackWhenItIsToBeUsedEveryTime)
{
    startProgram();
    auto* every = find<QCheckBox>("everyTimeBt");
    EXPECT_FALSE(every->isEnabled());
    useDestination();
    EXPECT_TRUE(every->isEnabled());
    EXPECT_FALSE(every->isChecked());
    click("everyTimeBt");
    EXPECT_TRUE(every->isChecked());
    endProgram();
    prefReload();
    startProgram();
    EXPECT_TEXT(find<QLineEdit>("mainEncDstPathStr")->text(), destination_);
    EXPECT_TRUE(find<QCheckBox>("everyTimeBt")->isChecked());
    click("everyTimeBt");
    endProgram();
    prefReload();
    startProgram();
    EXPECT_TRUE(find<QLineEdit>("mainEncDstPathStr")->text().isEmpty());
}

// A second pass counts percents, and the bar's range is the clip's length: 30 s of ProRes stood at "100 %" for most of
// the time.
TEST_F(WindowRows, TheSecondStepTellsItsOwnPercentage)
{
    prepare(2);
    rows().setOut(0, 5);
    click("batchEncGoBt");
    EXPECT_TEXT(find<QLabel>("clipPlaceStr")->text(), QStringLiteral("Clip 1 of 2"));
    EXPECT_TEXT(find<QLabel>("clipStepStr")->text(), QStringLiteral("Step 1 of 2"));
    tools_.current(ToolKind::Encode).launcher->write(QStringLiteral("frame=  1 fps=1 time=15.00 bitrate=1\n"));
    EXPECT_TRUE(find<QLabel>("mainEncProgressPercentStr")->isVisible());
    endPass();
    tools_.current(ToolKind::SecondPass).launcher->write(QStringLiteral("Processing (47%)\n"));
    EXPECT_TEXT(find<QLabel>("clipStepStr")->text(), QStringLiteral("Step 2 of 2: ProRes, 47 %"));
    EXPECT_FALSE(find<QLabel>("mainEncProgressPercentStr")->isVisible());
    click("encStopBt.0");
    EXPECT_TEXT(find<QLabel>("clipStepStr")->text(), QStringLiteral("Paused"));
    click("encStopBt.0");
    EXPECT_TEXT(find<QLabel>("clipStepStr")->text(), QStringLiteral("Step 2 of 2: ProRes, 47 %"));
}

} // namespace tavrix::test
