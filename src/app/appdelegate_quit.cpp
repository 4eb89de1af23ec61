#include "app/appdelegate.h"

#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/filedelete.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/preferences.h"
#include "base/runloopgate.h"
#include "base/settings.h"

// The end of the program.
namespace tavrix
{

namespace
{

constexpr int quitAlertSeconds = 20;

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
    if (encTaskClass_ != nullptr || analysisTaskClass_ != nullptr) {
        quitWithoutQuestion();
    }
    taskLauncherDone(nullptr);
    prefSynchronize();
}

void appDelegate::iba_menuQuit()
{
    if (quitting_) {
        return;
    }
    if (face_->isHelpVisible()) {
        face_->hideHelp();
    }
    if (encTaskClass_ != nullptr) {
        const QString cancel = localizedString(QStringLiteral("D_Annuler"));
        const QString answer = displayAlertDelayed(
            localizedString(QStringLiteral("D_quit_1")), localizedString(QStringLiteral("D_quit_2")), cancel,
            localizedString(QStringLiteral("Menu_Quit")), QString(), 0, quitAlertSeconds);
        if (answer == cancel) {
            return;
        }
    }
    quitWithoutQuestion();
}

void appDelegate::quitWithoutQuestion()
{
    if (quitting_) {
        return;
    }
    const QString destination = prefReadChildDico(pref::processEncDico, record::dstPathStr);
    // Between two children, under an alert, a row has its files too.
    const bool encoding = encTaskClass_ != nullptr || model_.batchEncGoBt.state() == 1;
    quitting_ = true;
    if (encoding) {
        removePartialOutput(destination);
    }
    endChildren();
    if (encoding) {
        removePartialOutput(destination);
        prefWrite(pref::encCurrentProcessingFile, cancelMark);
        prefDelete(pref::processEncDico);
    }
    finishQuit();
}

void appDelegate::endChildren()
{
    if (taskLauncher* launcher = encTaskClass_.get()) {
        launcher->terminate();
        taskLauncherDone(launcher);
    }
    if (taskLauncher* launcher = analysisTaskClass_.get()) {
        launcher->setDelegate(nullptr);
        launcher->terminate();
        releaseAnalysisTask();
    }
}

void appDelegate::finishQuit()
{
    encBatchRemoveAll(nullptr);
    if (!getTMPFOLDER().startsWith(QLatin1String("/private/")) && !removeOwnFolder(getTMPFOLDER())) {
        logLine(QStringLiteral("temporary folder    :-( %@"), {getTMPFOLDER()});
    }
    if (!prefSynchronize()) {
        logLine(QStringLiteral("preferences         :-( %@"), {preferencesPath()});
    }
    face_->terminate();
}

} // namespace tavrix
