// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/dialogue/runloopgate.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"

#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr int cancelButton = 0;
constexpr int quitButton = 1;
QString question()
{
    return alertEvent("D_quit_1");
}

class Quit : public ControllerTest
{
protected:
    void begin(int count, int out = 3)
    {
        sources = makeClips(count);
        addRows(sources);
        for (int i = 0; i < count; ++i) {
            rows().setOut(i, out);
        }
        face.events.clear();
        face.alerts.clear();
        pressStart();
    }

    void expectGone()
    {
        settle();
        EXPECT_TRUE(controller->isQuitting());
        EXPECT_TRUE(tools.running().isEmpty());
        EXPECT_EQ(rows().count(), 0);
        EXPECT_FALSE(itemExists(folder.path(QStringLiteral("temporary"))));
        EXPECT_EQ(face.count(QStringLiteral("terminate")), 1);
        EXPECT_EQ(face.count(sheetEvent("D_fin_GUI")), 0);
        const qsizetype launches = tools.launches.size();
        controller->applicationWillTerminate();
        controller->iba_menuQuit();
        controller->quitWithoutQuestion();
        settle();
        EXPECT_EQ(tools.launches.size(), launches);
        EXPECT_EQ(face.count(QStringLiteral("terminate")), 1);
    }

    // Quits under the first alert, once, and counts the rows that are reported after it.
    void quitUnderAnAlert()
    {
        QObject::connect(controller.get(), &appDelegate::rowFinished, controller.get(),
                         [this] { rowsAfterTheQuit += controller->isQuitting() ? 1 : 0; });
        face.whileOpen = [this](const AlertRequest&) {
            controller->quitWithoutQuestion();
        };
    }

    QStringList sources;
    int rowsAfterTheQuit = 0;
};

} // namespace

TEST_F(Quit, IdleAsksNothing)
{
    addRows(makeClips(2));
    face.events.clear();
    controller->iba_menuQuit();
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("terminate")));
    expectGone();
}

TEST_F(Quit, CancelledChangesNothing)
{
    begin(2);
    for (const int button : {cancelButton, -1}) {
        face.answer(button);
        controller->iba_menuQuit();
    }
    EXPECT_EQ(face.count(question()), 2);
    EXPECT_EQ(face.alerts.first().seconds, 20);
    EXPECT_TEXTS(face.alerts.first().buttons, QStringList({QStringLiteral("Cancel"), QStringLiteral("Quit")}));
    EXPECT_FALSE(controller->isQuitting());
    ASSERT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(Quit, WhileEncodingLeavesNoChildAndNoPartialOutput)
{
    begin(3);
    const FakeTools::Launch launch = tools.running().last();
    tools.writeFiles(launch);
    face.answer(quitButton);
    controller->iba_menuQuit();
    EXPECT_FALSE(itemExists(launch.output()));
    EXPECT_EQ(tools.launches.last().source(), sources.at(0));
    EXPECT_TEXT(prefRead(pref::encCurrentProcessingFile), QStringLiteral("cancel"));
    expectGone();
}

TEST_F(Quit, WhileEncodingInTwoPassesStartsNoSecondOne)
{
    setPRORES(1);
    begin(2, 5);
    tools.writeFiles(tools.running().last());
    face.answer(quitButton);
    controller->iba_menuQuit();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TRUE(QDir(events).entryList(QDir::Files).isEmpty());
    expectGone();
}

TEST_F(Quit, DuringTheSecondPassRemovesTheIntermediateToo)
{
    setPRORES(1);
    begin(1, 5);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    tools.writeFiles(tools.running().last());
    controller->quitWithoutQuestion();
    EXPECT_TRUE(QDir(events).entryList(QDir::Files).isEmpty());
    expectGone();
}

TEST_F(Quit, WhilePaused)
{
    begin(1);
    pressPause();
    face.answer(quitButton);
    controller->iba_menuQuit();
    expectGone();
}

TEST_F(Quit, WhileAnalysingEndsTheChildAndKeepsTheQueue)
{
    sources = makeClips(2);
    controller->draggedFiles(sources);
    controller->iba_menuQuit();
    EXPECT_EQ(face.count(question()), 0);
    EXPECT_TEXT(prefRead(pref::analysisSrcPathStr), sources.at(0));
    EXPECT_TEXT(prefReadChildDico(pref::analysisSrcPathesDico, QStringLiteral("0")), sources.at(1));
    expectGone();
}

TEST_F(Quit, WhilePausedForADropEndsBothChildren)
{
    begin(1);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    EXPECT_EQ(tools.running().size(), 2);
    face.answer(quitButton);
    controller->iba_menuQuit();
    expectGone();
}

TEST_F(Quit, WithAnEncoderEndThatStillWaits)
{
    begin(2);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    tools.finish(tools.current(ToolKind::Encode));
    settle();
    controller->quitWithoutQuestion();
    expectGone();
}

TEST_F(Quit, EncoderThatEndsWhileTheQuestionIsOpen)
{
    begin(2);
    face.answers.push_back([&](const AlertRequest&) {
        tools.finish(tools.running().last());
        return AlertOutcome{quitButton, false};
    });
    controller->iba_menuQuit();
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    expectGone();
}

TEST_F(Quit, EncoderThatEndsWhileTheCancelledQuestionIsOpen)
{
    begin(2);
    face.answers.push_back([&](const AlertRequest&) {
        tools.finish(tools.running().last());
        return AlertOutcome{cancelButton, false};
    });
    controller->iba_menuQuit();
    settle();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceCurrent"));
    ASSERT_TRUE(tools.finishAll());
    expectIdle();
}

TEST_F(Quit, UnderTheReplaceQuestionStartsNoChild)
{
    sources = makeClips(1);
    addRows(sources);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(sources.at(0)), 300));
    face.whileOpen = [&](const AlertRequest&) {
        controller->quitWithoutQuestion();
    };
    pressStart();
    settle();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_TRUE(itemExists(outputOf(sources.at(0))));
}

TEST_F(Quit, UnderTheReplaceQuestionOfALaterRow)
{
    sources = makeClips(3);
    addRows(sources);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(sources.at(2)), 300));
    quitUnderAnAlert();
    pressStart();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    EXPECT_FALSE(resumeLog().contains(sources.at(2)));
    EXPECT_TRUE(itemExists(outputOf(sources.at(2))));
    EXPECT_EQ(rowsAfterTheQuit, 0);
    expectGone();
}

TEST_F(Quit, UnderTheReplaceQuestionThatIsAnsweredWithKeep)
{
    sources = makeClips(2);
    addRows(sources);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(sources.at(0)), 300));
    constexpr int keepButton = 1;
    face.answer(keepButton, false);
    quitUnderAnAlert();
    pressStart();
    EXPECT_TRUE(itemExists(outputOf(sources.at(0))));
    EXPECT_EQ(rowsAfterTheQuit, 0) << "its row is gone";
    expectGone();
}

TEST_F(Quit, UnderTheAlertAboutLackingSpace)
{
    sources = makeClips(2);
    addRows(sources);
    setFreeSpaceForTests(1);
    quitUnderAnAlert();
    pressStart();
    EXPECT_EQ(rowsAfterTheQuit, 0);
    expectGone();
}

TEST_F(Quit, UnderTheAlertAboutTheSecondPassLeavesNothingOfTheFirst)
{
    setAIC(1);
    begin(2, 4);
    setFreeSpaceForTests(1);
    quitUnderAnAlert();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_EQ(face.count(alertEvent("D_go_echec_disque4")), 1);
    EXPECT_TEXTS(QDir(events).entryList(QDir::Files | QDir::Hidden), QStringList());
    EXPECT_EQ(rowsAfterTheQuit, 0);
    expectGone();
}

TEST_F(Quit, UnderTheAlertAboutAVanishedSource)
{
    sources = makeClips(3);
    addRows(sources);
    ASSERT_TRUE(QFile::remove(sources.at(2)));
    quitUnderAnAlert();
    pressStart();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    EXPECT_EQ(rowsAfterTheQuit, 0);
    expectGone();
}

TEST_F(Quit, UnderTheQuestionForADestinationStartsNothing)
{
    addRows(makeClips(1));
    model().mainEncDstPathStr.setStringValue(QString());
    face.folders << destination;
    quitUnderAnAlert();
    pressStart();
    EXPECT_EQ(face.count(QStringLiteral("choose")), 0);
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    expectGone();
}

TEST_F(Quit, UnderTheDeveloperAlertOfTheAnalysisLaunchesNothing)
{
    setDEBUGDEVForTests(1);
    quitUnderAnAlert();
    controller->draggedFiles(makeClips(2));
    EXPECT_EQ(face.count(QStringLiteral("alert:reliquat = 1")), 1);
    EXPECT_EQ(tools.launches.size(), 0);
    expectGone();
}

TEST_F(Quit, ProgramThatEndsWithoutAQuitStartsNoFurtherRow)
{
    begin(3);
    controller->applicationWillTerminate();
    settle();
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    EXPECT_TRUE(tools.running().isEmpty());
}

TEST_F(Quit, LastWindowGoesThroughTheQuestion)
{
    begin(1);
    face.answer(cancelButton);
    EXPECT_FALSE(controller->applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_EQ(face.count(question()), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("applicationShouldTerminateAfterLastWindowClosed")));
}

TEST_F(Quit, ClosesTheHelp)
{
    face.helpVisible = true;
    appDelegate::ac_iba_menuQuit();
    EXPECT_EQ(face.count(QStringLiteral("help hidden")), 1);
    expectGone();
    controller.reset();
    appDelegate::ac_iba_menuQuit();
}

TEST_F(Quit, ControllerThatGoesEndsItsChildren)
{
    begin(1);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    controller.reset();
    EXPECT_TRUE(tools.running().isEmpty());
}

TEST_F(Quit, UnsetTemporaryFolderIsNotDeleted)
{
    setTMPFOLDER(QString());
    controller->quitWithoutQuestion();
    EXPECT_EQ(face.count(QStringLiteral("terminate")), 1);
    EXPECT_FALSE(log.contains(QStringLiteral("temporary folder    :-( ") + getTMPFOLDER()));
}

TEST_F(Quit, CloseToTheEndOfTheBatchKeepsFinishedOutputs)
{
    begin(2);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    controller->quitWithoutQuestion();
    EXPECT_TRUE(itemExists(outputOf(sources.at(0))));
    expectGone();
}
