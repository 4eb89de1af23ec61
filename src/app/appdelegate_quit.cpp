// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"

#include "app/alerttext.h"
#include "app/face.h"
#include "app/machines.h"
#include "base/files/filedelete.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/log.h"

// The end of the program.
namespace tavrix
{

namespace
{

constexpr int quitAlertSeconds = 20;
constexpr int cancelButton = 0;

// Without an own temporary folder the setting names one that belongs to the system.
void removeTemporaryFolder()
{
    if (!getTMPFOLDER().startsWith(QLatin1String("/private/")) && !removeOwnFolder(getTMPFOLDER())) {
        logLine(QStringLiteral("temporary folder    :-( %@"), {getTMPFOLDER()});
    }
}

} // namespace

bool appDelegate::applicationShouldTerminateAfterLastWindowClosed()
{
    logLine(QStringLiteral("applicationShouldTerminateAfterLastWindowClosed"));
    iba_menuQuit();
    return false;
}

void appDelegate::applicationWillTerminate()
{
    // A running child's end must not start the next row on the way out.
    if (machines_->batch.child().isHeld() || machines_->analysis.child().isHeld()) {
        quitWithoutQuestion();
    }
    taskLauncherDone(nullptr);
    prefSynchronize();
}

void appDelegate::iba_menuQuit()
{
    drive([this] {
        if (session_.face().isHelpVisible()) {
            session_.face().hideHelp();
        }
        if (isEncoding()) {
            const Answer answer = session_.ask({alertText("D_quit_1"),
                                                alertText("D_quit_2"),
                                                {alertText("D_Annuler"), alertText("Menu_Quit")},
                                                cancelButton,
                                                quitAlertSeconds,
                                                {}});
            // A batch that was stopped meanwhile leaves nothing to ask for: the answer still says whether to quit.
            if (answer.after == After::Ending || answer.button == cancelButton) {
                return;
            }
        }
        // Who quits has done with the list.
        machines_->memory.forget();
        quitWithoutQuestion();
    });
}

void appDelegate::quitWithoutQuestion()
{
    drive([this] {
        session_.end();
        machines_->memory.seal();
        machines_->batch.abandon();
        machines_->analysis.abandon();
        machines_->rows.removeAll(nullptr);
        removeTemporaryFolder();
        if (!prefSynchronize()) {
            logLine(QStringLiteral("preferences         :-( %@"), {preferencesPath()});
        }
        session_.face().terminate();
    });
}

} // namespace tavrix
