// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "app/logs.h"
#include "base/bundle/bundle.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "testresources.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Menus : public ControllerTest
{
protected:
    const QString askForFolder = sheetEvent("D_go_dossier_destination1");
};

struct RevealRow {
    const char* name;
    const char* folder; // below the test's folder; null: none
    bool events;
    const char* opened; // null: the sheet
};

class Reveal : public ControllerTest, public testing::WithParamInterface<RevealRow>
{
};

const RevealRow revealRows[] = {
    {"EventsInside", "destination", true, "destination/Tavrix events"},
    {"FolderItself", "destination", false, "destination"},
    {"Missing", "gone", false, nullptr},
    {"Empty", nullptr, false, nullptr},
};

} // namespace

TEST_P(Reveal, OpensTheDestination)
{
    if (GetParam().events) {
        folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    }
    const QString path = GetParam().folder == nullptr ? QString() : folder.path(text(GetParam().folder));
    model().mainEncDstPathStr.setStringValue(path);
    controller->iba_OpenFolder(&model().mainEncDstRevealBt);
    EXPECT_TEXTS(face.events, QStringList(GetParam().opened == nullptr
                                              ? sheetEvent("D_go_dossier_destination1")
                                              : QStringLiteral("open:") + folder.path(text(GetParam().opened))));
}

INSTANTIATE_TEST_SUITE_P(Menus, Reveal, testing::ValuesIn(revealRows), rowName<RevealRow>);

TEST_F(Menus, DefaultDestinationIsOpenedItself)
{
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    model().prefDefautDstPathStr.setStringValue(destination);
    controller->iba_OpenFolder(&model().prefDefautDstRevealBt);
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("open:") + destination));
}

TEST_F(Menus, OtherSendersOfOpenFolderGetTheSheet)
{
    controller->iba_OpenFolder(nullptr);
    controller->iba_OpenFolder(&model().menuDebug);
    EXPECT_EQ(face.count(askForFolder), 2);
    EXPECT_TEXT(face.alerts.first().text, QStringLiteral(""));
}

TEST_F(Menus, LogsAreOpened)
{
    controller->iba_OpenFile(&model().menuDetailsLog);
    controller->iba_OpenFile(&model().menuResumeLog);
    controller->iba_OpenFile(&model().menuContact);
    EXPECT_TEXTS(face.events, QStringList({QStringLiteral("open:") + detailsLogPath(),
                                           QStringLiteral("open:") + logResumePathStr()}));
    setDEBUGDEVForTests(1);
    controller->iba_OpenFile(nullptr);
    setDEBUGDEVForTests(0);
    EXPECT_TEXT(face.events.last(), QStringLiteral("alert:iba_OpenFile"));
}

TEST_F(Menus, DesktopThatOpensNothingIsOnlyLogged)
{
    face.desktopWorks = false;
    controller->iba_OpenFile(&model().menuDetailsLog);
    controller->iba_OpenFolder(&model().mainEncDstRevealBt);
    controller->iba_openUrl();
    EXPECT_EQ(face.alerts.size(), 0);
}

TEST_F(Menus, PreferencesSheetStoresTheSettings)
{
    controller->iba_menuPref();
    model().prefDefautDstPathStr.setStringValue(destination);
    model().prefCheckMatrix.setSelectedSegment(5);
    model().prefColor.setSelectedSegment(1);
    controller->iba_menuPrefClose();
    EXPECT_TEXTS(face.events,
                 QStringList({QStringLiteral("preferences opened"), QStringLiteral("preferences closed")}));
    prefReload();
    EXPECT_TEXT(prefRead(pref::prefDefautDstPathStr), destination);
    EXPECT_TEXT(prefRead(pref::prefCheckMatrix), QStringLiteral("5"));
    EXPECT_TEXT(prefRead(pref::prefColor), QStringLiteral("1"));
    model().prefDefautDstPathStr.setStringValue(QString());
    controller->iba_menuPrefClose();
    EXPECT_TEXT(prefRead(pref::prefDefautDstPathStr), QStringLiteral(""));
}

TEST_F(Menus, CaptionFollowsTheFormat)
{
    for (int segment = 0; segment < outputFormatCount; ++segment) {
        model().prefCheckMatrix.setSelectedSegment(segment);
        controller->prefCheckCaptions();
        EXPECT_FALSE(model().prefCheckCaption.stringValue().startsWith(QLatin1String("prefCaption"))) << segment;
    }
    model().prefCheckMatrix.setSelectedSegment(5);
    controller->prefCheckCaptions();
    EXPECT_TRUE(model().prefCheckCaption.stringValue().startsWith(QLatin1String("Apple ProRes 422")));
}

TEST_F(Menus, ColourIsStoredAndShown)
{
    model().prefColor.setSelectedSegment(2);
    controller->iba_setColor();
    EXPECT_TEXT(prefRead(pref::prefColor), QStringLiteral("2"));
    EXPECT_TEXT(model().prefColorImgView.imageName(), QStringLiteral("color2"));
}

TEST_F(Menus, DrawerToggles)
{
    controller->iba_drawerToggle();
    EXPECT_TRUE(model().drawer.isOpen());
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("ecran:b 320")));
    controller->iba_drawerToggle();
    EXPECT_FALSE(model().drawer.isOpen());
    EXPECT_EQ(face.events.size(), 1);
}

TEST_F(Menus, HelpIsShownAndHidden)
{
    controller->iba_menuHelp(&model().menuContact);
    EXPECT_TRUE(face.helpVisible);
    controller->iba_helpQtClose();
    EXPECT_FALSE(face.helpVisible);
    controller->iba_menuHelp(&model().menuContact);
    controller->windowWillClose();
    EXPECT_FALSE(face.helpVisible);
}

TEST_F(Menus, WebSiteIsOpened)
{
    controller->iba_openUrl();
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("open:https://tavrix.example/")));
}

TEST_F(Menus, PreviewShowsTheSourceOfARow)
{
    const QStringList sources = makeClips(1);
    addRows(sources);
    face.events.clear();
    controller->iba_preview(0);
    controller->iba_preview(1);
    controller->iba_preview(-1);
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("preview:") + sources.at(0)));
}

TEST_F(Menus, FolderChooserFillsTheFieldOfItsButton)
{
    face.folders = QStringList({QStringLiteral("/one"), QStringLiteral("/two")});
    controller->iba_selectFolderBt(&model().prefDefautDstSelectBt);
    controller->iba_selectFolderBt(&model().mainEncDstSelectBt);
    controller->iba_selectFolderBt(&model().mainEncDstSelectBt);
    EXPECT_TEXT(model().prefDefautDstPathStr.stringValue(), QStringLiteral("/one"));
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), QStringLiteral("/two"));
}

TEST_F(Menus, DebugItemTogglesTheDiagnostics)
{
    controller->iba_menuDebugToggle();
    EXPECT_EQ(getDEBUG(), 1);
    EXPECT_EQ(model().menuDebug.state(), 1);
    EXPECT_TEXT(model().menuDebug.title(), QStringLiteral("Detailed diagnostics: on"));
    controller->iba_menuDebugToggle();
    EXPECT_EQ(getDEBUG(), 0);
    EXPECT_EQ(model().menuDebug.state(), 0);
    EXPECT_TEXT(model().menuDebug.title(), QStringLiteral("Detailed diagnostics: off"));
}

TEST_F(Menus, BugReportRevealsTheLogsAndTellsWhatToDo)
{
    const TestResources resources;
    resources.makeTool(QStringLiteral("ffmpeg"), "echo 'FFmpeg version git-N-4711-gabc, Copyright' >&2\nexit 1\n");
    model().versionStr.setStringValue(QStringLiteral("1.0"));
    controller->iba_mail(&model().menuBugreport);
    ASSERT_EQ(face.events.size(), 3);
    EXPECT_TEXT(face.events.at(0), QStringLiteral("reveal:") + logsFolder());
    EXPECT_TRUE(face.events.at(1).startsWith(
        QLatin1String("open:mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v1.00%20(English)&body=1.0-r4711%0A%"
                      "0AHello,%0A%0A")))
        << face.events.at(1).toStdString();
    EXPECT_EQ(face.events.at(1).count(u'&'), 1);
    EXPECT_EQ(face.alerts.first().seconds, 30);
    face.events.clear();
    controller->iba_mail(&model().menuContact);
    EXPECT_TEXTS(face.events,
                 QStringList(QStringLiteral("open:mailto:contact@tavrix.example?subject=Tavrix%20-%20v1.00%20(English)&"
                                            "body=1.0-r4711%0A%0A")));
}
