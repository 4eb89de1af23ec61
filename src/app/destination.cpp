// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/destination.h"

#include "app/alerttext.h"
#include "app/session.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/preferences.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "encode/outputname.h"
#include "platform/desktop.h"

namespace tavrix
{

namespace
{

constexpr int makeButton = 0;
constexpr int chooseButton = 1;
constexpr int cancelButton = 2;

// A folder can be typed with a tilde.
bool isTypedFolder(const QString& text)
{
    return isFolder(stringByExpandingTildeInPath(text));
}

} // namespace

QString Destination::typed() const
{
    return session_.model().mainEncDstPathStr.stringValue();
}

void Destination::choose(const Control* sender)
{
    const auto [after, folder] = session_.chooseFolder();
    if (after == After::Ending || folder.isEmpty()) {
        return;
    }
    // A stop of the batch does not take the chosen folder back.
    WindowModel& model = session_.model();
    if (sender == &model.prefDefautDstSelectBt) {
        model.prefDefautDstPathStr.setStringValue(folder);
    } else {
        model.mainEncDstPathStr.setStringValue(folder);
    }
}

void Destination::reveal(const Control* sender)
{
    const WindowModel& model = session_.model();
    QString folder;
    if (sender == &model.prefDefautDstRevealBt) {
        folder = stringByExpandingTildeInPath(model.prefDefautDstPathStr.stringValue());
    } else if (sender == &model.mainEncDstRevealBt) {
        const QString inside = eventsFolder(typed());
        folder = !typed().isEmpty() && isFolder(inside) ? inside : stringByExpandingTildeInPath(typed());
    }
    if (folder.isEmpty() || !testPresenceCocoa(folder)) {
        session_.sheet(alertText("D_go_dossier_destination1"));
        return;
    }
    openFileFolder(folder);
}

bool Destination::settle()
{
    if (typed().isEmpty()) {
        return askForFolder("D_go_dossier_destination1") == Asked::Chosen;
    }
    if (isTypedFolder(typed()) || takePreferred()) {
        return true;
    }
    const bool fullPath = stringByExpandingTildeInPath(typed()).startsWith(QLatin1Char('/'));
    const Asked asked = fullPath ? offerToMake() : askForFolder("D_go_dossier_destination2");
    // The preference may have been set while the question was open.
    return asked == Asked::Chosen || (asked == Asked::Cancelled && takePreferred());
}

bool Destination::takePreferred()
{
    const QString preferred = prefRead(pref::prefDefautDstPathStr);
    if (!isTypedFolder(preferred)) {
        return false;
    }
    session_.model().mainEncDstPathStr.setStringValue(preferred);
    return true;
}

// What was typed stays when nothing is chosen: a person may want to mend it.
Destination::Asked Destination::askForFolder(const char* titleKey)
{
    if (session_.tell(alertText(titleKey), alertText("D_go_dossier_destination3")) != After::GoOn) {
        return Asked::WorkOver;
    }
    return chosen();
}

Destination::Asked Destination::chosen()
{
    choose(&session_.model().mainEncDstSelectBt);
    return isTypedFolder(typed()) ? Asked::Chosen : Asked::Cancelled;
}

Destination::Asked Destination::offerToMake()
{
    const QString folder = stringByExpandingTildeInPath(typed());
    const Answer answer =
        session_.ask({alertText("D_go_dossier_destination2"),
                      formatText(alertText("D_makeFolder_2"), {folder}),
                      {alertText("D_makeFolder"), alertText("D_chooseFolder"), alertText("D_Annuler")},
                      cancelButton,
                      0,
                      {}});
    if (answer.after != After::GoOn) {
        return Asked::WorkOver;
    }
    if (answer.button == makeButton && !mkdirCocoa(folder) && !isFolder(folder)) {
        const After after = session_.tell(formatText(alertText("D_makeFolder_3"), {folder}));
        return after == After::GoOn ? Asked::Cancelled : Asked::WorkOver;
    }
    if (answer.button == chooseButton) {
        return chosen();
    }
    return isTypedFolder(typed()) ? Asked::Chosen : Asked::Cancelled;
}

} // namespace tavrix
