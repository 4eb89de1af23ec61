// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "gui/dialogs/helpwindow.h"
#include "gui/dialogs/preferencessheet.h"
#include "gui/preview/moviewidget.h"
#include "gui/preview/previewwindow.h"
#include "gui/widgets/theme.h"
#include "quicktime/rules/movieslots.h"
#include "support/qtprinters.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QSlider>
#include <QToolButton>

namespace tavrix::test
{

using PreferencesAndMenus = WindowTest;

TEST_F(PreferencesAndMenus, PreferencesSurviveARestart)
{
    startProgram();
    trigger("menuPref");
    ASSERT_TRUE(window().preferences().isVisible());
    EXPECT_EQ(window().preferences().windowModality(), Qt::WindowModal);
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 3);
    click("prefCheckMatrix.5");
    EXPECT_EQ(find<QLabel>("prefCheckCaption")->text(), localizedString(QStringLiteral("prefCaption5")));
    EXPECT_EQ(find<QComboBox>("formatBt")->currentIndex(), 5);
    click("prefColor.2");
    EXPECT_EQ(currentTheme().accent, themeAt(2).accent);
    click("prefColor.4");
    EXPECT_TRUE(currentTheme().light);
    click("prefColor.2");
    type("prefDefautDstPathStr", destination_);
    click("preferencesCloseBt");
    EXPECT_FALSE(window().preferences().isVisible());

    endProgram();
    prefReload();
    startProgram();
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 5);
    EXPECT_EQ(model().prefColor.selectedSegment(), 2);
    EXPECT_EQ(currentTheme().accent, themeAt(2).accent);
    EXPECT_TRUE(find<QToolButton>("prefCheckMatrix.5")->isChecked());
    EXPECT_FALSE(find<QToolButton>("prefCheckMatrix.3")->isChecked());
    EXPECT_EQ(find<QLineEdit>("mainEncDstPathStr")->text(), destination_);
    EXPECT_EQ(find<QLineEdit>("prefDefautDstPathStr")->text(), destination_);
}

TEST_F(PreferencesAndMenus, EscapeClosesAndKeepsThePreferences)
{
    startProgram();
    trigger("menuPref");
    click("prefCheckMatrix.0");
    QTest::keyClick(&window().preferences(), Qt::Key_Escape);
    EXPECT_FALSE(window().preferences().isVisible());
    EXPECT_TEXT(prefRead(QStringLiteral("prefCheckMatrix")), QStringLiteral("0"));
}

TEST_F(PreferencesAndMenus, TheDefaultDestinationIsChosenAndRevealed)
{
    startProgram();
    trigger("menuPref");
    robot_->choose(destination_);
    click("prefDefautDstSelectBt");
    EXPECT_EQ(find<QLineEdit>("prefDefautDstPathStr")->text(), destination_);
    click("prefDefautDstRevealBt");
    ASSERT_EQ(desktop_.opened.size(), 1);
    EXPECT_EQ(desktop_.opened.first().toLocalFile(), destination_);
}

TEST_F(PreferencesAndMenus, SegmentsAreReachedByArrowKeys)
{
    startProgram();
    trigger("menuPref");
    auto* first = find<QToolButton>("prefCheckMatrix.0");
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Right);
    QTest::keyClick(find<QToolButton>("prefCheckMatrix.1"), Qt::Key_Space);
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 1);
}

TEST_F(PreferencesAndMenus, TheKeyboardStartsAtTheFormatInForce)
{
    startProgram();
    model().prefCheckMatrix.setSelectedSegment(4);
    trigger("menuPref");
    EXPECT_TRUE(waitFor([this] { return find<QToolButton>("prefCheckMatrix.4")->hasFocus(); }));
}

TEST_F(PreferencesAndMenus, RowItemsNeedARow)
{
    startProgram();
    const auto enabled = [this] {
        QString flags;
        for (const char* name : {"menuPreview", "menuRemove", "menuRemoveAll"}) {
            flags += find<QAction>(name)->isEnabled() ? QLatin1Char('1') : QLatin1Char('0');
        }
        return flags +
               (find<QAbstractButton>("batchEncRemoveAllBt")->isEnabled() ? QLatin1Char('1') : QLatin1Char('0'));
    };
    EXPECT_TEXT(enabled(), QStringLiteral("0000"));
    analysedClips(2);
    rows().setSelectedRow(-1);
    EXPECT_TEXT(enabled(), QStringLiteral("1011"));
    rows().setSelectedRow(1);
    EXPECT_TEXT(enabled(), QStringLiteral("1111"));
    trigger("menuRemove");
    EXPECT_EQ(rows().count(), 1);
    rows().setSelectedRow(0);
    trigger("menuRemove");
    EXPECT_TEXT(enabled(), QStringLiteral("0000"));
}

TEST_F(PreferencesAndMenus, CloseAndQuitWorkInEveryWindow)
{
    startProgram();
    trigger("menuHelp");
    QWidget* help = program_->face().helpWindow();
    ASSERT_TRUE(waitFor([help] { return QApplication::activeWindow() == help; }));
    QTest::keyClick(help, Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([help] { return !help->isVisible(); }));
    trigger("menuHelp");
    ASSERT_TRUE(waitFor([help] { return QApplication::activeWindow() == help; }));
    QTest::keyClick(help, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([this] { return program_->hasEnded(); }));
}

TEST_F(PreferencesAndMenus, ThePreviewKeepsItsVolumeForTheNextClip)
{
    startProgram();
    const QString movie = HelpWindow::moviePath();
    if (movie.isEmpty()) {
        GTEST_SKIP() << "the build has made no movie";
    }
    program_->face().preview(movie);
    auto* preview = program_->face().previewWindow();
    auto* volume = preview->findChild<QSlider*>(QStringLiteral("previewVolume"));
    volume->setValue(30);
    preview->close();
    QTMOVIErelease();
    program_->face().preview(movie);
    ASSERT_TRUE(preview->movieWidget().movie());
    EXPECT_EQ(volume->value(), 30);
    EXPECT_FLOAT_EQ(preview->movieWidget().movie()->volume(), 0.3F);
    preview->close();
}

TEST_F(PreferencesAndMenus, FileMenuOpensClipsFoldersAndTheDestination)
{
    startProgram();
    robot_->choose(folder_.makeFile(QStringLiteral("open.MTS"), "clip"));
    trigger("menuOpenFiles");
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 1);
    folder_.makeFile(QStringLiteral("card/00001.MTS"), "clip");
    robot_->choose(folder_.path(QStringLiteral("card")));
    trigger("menuOpenFolder");
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 2);
    robot_->choose(destination_);
    trigger("menuDestination");
    EXPECT_EQ(find<QLineEdit>("mainEncDstPathStr")->text(), destination_);
    trigger("menuReveal");
    ASSERT_EQ(desktop_.opened.size(), 1);
    EXPECT_EQ(desktop_.opened.first().toLocalFile(), destination_);
}

TEST_F(PreferencesAndMenus, EditMenuWorksOnTheFocusedField)
{
    startProgram();
    window().activateWindow();
    auto* field = find<QLineEdit>("mainEncDstPathStr");
    field->setFocus();
    ASSERT_TRUE(waitFor([field] { return field->hasFocus(); }));
    type("mainEncDstPathStr", QStringLiteral("/a"));
    trigger("menuSelectAll");
    trigger("menuCopy");
    field->end(false);
    trigger("menuPaste");
    EXPECT_EQ(field->text(), QStringLiteral("/a/a"));
    EXPECT_EQ(model().mainEncDstPathStr.stringValue(), QStringLiteral("/a/a"));
    trigger("menuUndo");
    EXPECT_EQ(field->text(), QStringLiteral("/a"));
    trigger("menuSelectAll");
    trigger("menuCut");
    EXPECT_EQ(field->text(), QString());
    EXPECT_TRUE(model().mainEncDstPathStr.stringValue().isEmpty());
}

TEST_F(PreferencesAndMenus, BatchMenuStartsPausesRemovesAndStops)
{
    startProgram();
    analysedClips(3);
    useDestination();
    EXPECT_FALSE(find<QAction>("menuPause")->isEnabled());
    trigger("menuStart");
    ASSERT_TRUE(controller().isEncoding());
    trigger("menuPause");
    EXPECT_TRUE(tools_.current(ToolKind::Encode).launcher->isSuspended());
    trigger("menuPause");
    // With no row selected nothing happened.
    rows().setSelectedRow(-1);
    trigger("menuPreview");
    EXPECT_EQ(rows().selectedRow(), 0);
    rows().setSelectedRow(2);
    trigger("menuPreview");
    EXPECT_EQ(rows().selectedRow(), 2);
    ASSERT_NE(program_->face().previewWindow(), nullptr);
    EXPECT_TRUE(program_->face().previewWindow()->isVisible());
    program_->face().previewWindow()->close();
    trigger("menuRemove");
    EXPECT_EQ(rows().count(), 2);
    robot_->press(QStringLiteral("alertButton1"));
    trigger("menuRemoveAll");
    EXPECT_EQ(rows().count(), 1);
    robot_->press(QStringLiteral("alertButton0"));
    robot_->press(QStringLiteral("alertButton0"));
    trigger("menuStop");
    EXPECT_TRUE(waitFor([this] { return robot_->isDone() && model().batchEncGoBt.state() == 0; }));
    drop({folder_.makeFile(QStringLiteral("more.MTS"))});
    trigger("menuStopAnalysis");
    EXPECT_EQ(model().analysisStopInt.intValue(), 1);
    EXPECT_TRUE(tools_.finishAll());
}

TEST_F(PreferencesAndMenus, WindowMenuTogglesTheDrawerAndGivesItsRoomBack)
{
    startProgram();
    const int closed = window().height();
    trigger("menuDrawer");
    EXPECT_TRUE(find<QWidget>("drawer")->isVisible());
    EXPECT_TRUE(find<QAction>("menuDrawer")->isChecked());
    const int open = window().height();
    EXPECT_GT(open, closed + 150);
    trigger("menuDrawer");
    EXPECT_FALSE(find<QWidget>("drawer")->isVisible());
    EXPECT_LE(window().height(), closed + 20);
    // Opening and closing again does not let the window creep.
    const int once = window().height();
    trigger("menuDrawer");
    trigger("menuDrawer");
    EXPECT_EQ(window().height(), once);
    trigger("menuMinimize");
    EXPECT_TRUE(window().isMinimized());
}

TEST_F(PreferencesAndMenus, HelpMenuShowsHelpLogsAndMail)
{
    startProgram();
    trigger("menuHelp");
    ASSERT_NE(program_->face().helpWindow(), nullptr);
    EXPECT_TRUE(program_->face().helpWindow()->isVisible());
    trigger("menuResumeLog");
    trigger("menuDetailsLog");
    ASSERT_EQ(desktop_.opened.size(), 2);
    EXPECT_TRUE(desktop_.opened.at(0).toLocalFile().endsWith(QStringLiteral("/Resume.log")));
    EXPECT_TRUE(desktop_.opened.at(1).toLocalFile().endsWith(QStringLiteral("/Details.log")));
    // As long as the addresses are those of an example.
    EXPECT_FALSE(find<QAction>("menuWebSite")->isVisible());
    EXPECT_FALSE(find<QAction>("menuContact")->isVisible());
    EXPECT_TRUE(desktop_.revealed.isEmpty());
    robot_->press(QStringLiteral("alertButton0"));
    trigger("menuBugreport");
    click("reportMailBt");
    ASSERT_EQ(desktop_.opened.size(), 3);
    EXPECT_TRUE(desktop_.opened.at(2).toString().startsWith(QStringLiteral("mailto:bugreport@")));
    EXPECT_EQ(desktop_.revealed.size(), 1);
    EXPECT_TRUE(robot_->isDone());
}

TEST_F(PreferencesAndMenus, DebugItemTogglesTheSettingAndItsTitle)
{
    startProgram();
    auto* item = find<QAction>("menuDebug");
    EXPECT_EQ(item->text(), localizedString(QStringLiteral("Menu_Debug1")));
    trigger("menuDebug");
    EXPECT_EQ(getDEBUG(), 1);
    EXPECT_TRUE(item->isChecked());
    EXPECT_EQ(item->text(), localizedString(QStringLiteral("Menu_Debug0")));
    trigger("menuDebug");
    EXPECT_EQ(getDEBUG(), 0);
    EXPECT_FALSE(item->isChecked());
}

TEST_F(PreferencesAndMenus, AboutIsASheetAndCloseAsksToQuit)
{
    startProgram();
    robot_->press(QStringLiteral("alertButton0"));
    trigger("menuAbout");
    EXPECT_TRUE(waitFor([this] { return robot_->isDone(); }));
    window().activateWindow();
    ASSERT_TRUE(waitFor([this] { return QApplication::activeWindow() == &window(); }));
    trigger("menuClose");
    EXPECT_TRUE(waitFor([this] { return program_->hasEnded(); }));
}

TEST_F(PreferencesAndMenus, EveryMenuItemHasAnActionAndAText)
{
    startProgram();
    QStringList shortcuts;
    for (const QAction* menu : window().menuBar()->actions()) {
        EXPECT_FALSE(menu->text().startsWith(QStringLiteral("@@")));
        for (const QAction* item : menu->menu()->actions()) {
            if (item->isSeparator()) {
                continue;
            }
            EXPECT_FALSE(item->text().isEmpty());
            EXPECT_FALSE(item->text().contains(QStringLiteral("Win_"))) << item->text().toStdString();
            EXPECT_FALSE(item->objectName().isEmpty()) << item->text().toStdString();
            if (!item->shortcut().isEmpty()) {
                shortcuts << item->shortcut().toString();
            }
        }
    }
    EXPECT_EQ(shortcuts.removeDuplicates(), 0);
    EXPECT_GE(shortcuts.size(), 18);
}

} // namespace tavrix::test
