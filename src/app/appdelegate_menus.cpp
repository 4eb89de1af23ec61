#include "app/appdelegate.h"

#include "app/logs.h"
#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/localisation.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/settings.h"
#include "encode/outputname.h"
#include "platform/desktop.h"
#include "probe/ffprobes.h"

#include <QUrl>

// Menu and button actions that start nothing: preferences, help, folders, logs, mail.
namespace tavrix
{

namespace
{

constexpr int mailAlertSeconds = 30;
constexpr float drawerHeight = 320;

} // namespace

void appDelegate::iba_menuPref()
{
    face_->openPreferencesSheet();
}

void appDelegate::iba_menuPrefClose()
{
    const QString folder = model_.prefDefautDstPathStr.stringValue();
    if (folder.isEmpty()) {
        prefDelete(pref::prefDefautDstPathStr);
    } else {
        prefWrite(pref::prefDefautDstPathStr, folder);
    }
    prefWrite(pref::prefCheckMatrix, model_.prefCheckMatrix.selectedSegment());
    prefWrite(pref::prefColor, model_.prefColor.selectedSegment());
    face_->closePreferencesSheet();
    prefSynchronize();
}

void appDelegate::prefCheckCaptions()
{
    const QString key = formatText(QStringLiteral("prefCaption%d"), {model_.prefCheckMatrix.selectedSegment()});
    model_.prefCheckCaption.setStringValue(localizedString(key));
}

void appDelegate::iba_setColor()
{
    const int segment = model_.prefColor.selectedSegment();
    prefWrite(pref::prefColor, segment);
    model_.prefColorImgView.setImageName(model_.prefColor.imageName(segment));
}

void appDelegate::iba_drawerToggle()
{
    if (model_.drawer.isOpen()) {
        model_.drawer.close();
        return;
    }
    face_->ecran(QStringLiteral("b"), drawerHeight);
    model_.drawer.open();
}

void appDelegate::windowWillClose()
{
    iba_menuHelp(nullptr);
}

void appDelegate::iba_menuHelp(Control* sender)
{
    if (sender == nullptr) {
        face_->hideHelp();
        return;
    }
    face_->showHelp();
}

void appDelegate::iba_helpQtClose()
{
    face_->hideHelp();
}

void appDelegate::iba_openUrl()
{
    desktopServices().openUrl(QUrl(textOf(infoValue(QStringLiteral("TVXWebSite")))));
}

void appDelegate::iba_preview(int row)
{
    const BatchList& rows = model_.encBatchArrayController;
    if (row >= 0 && row < rows.count()) {
        face_->preview(rows.row(row).dico.value(record::mainEncSrcPathStr).toString());
    }
}

void appDelegate::iba_selectFolderBt(Control* sender)
{
    const QString folder = face_->selectFolder(QString());
    if (folder.isEmpty()) {
        return;
    }
    if (sender == &model_.prefDefautDstSelectBt) {
        model_.prefDefautDstPathStr.setStringValue(folder);
    } else {
        model_.mainEncDstPathStr.setStringValue(folder);
    }
}

void appDelegate::iba_OpenFile(Control* sender)
{
    if (sender == &model_.menuDetailsLog) {
        openWith(detailsLogPath(), QStringLiteral(""));
    } else if (sender == &model_.menuResumeLog) {
        openWith(logResumePathStr(), QStringLiteral(""));
    } else if (getDEBUGDEV() != 0) {
        displayAlert(QStringLiteral("iba_OpenFile"), QString(), 0, nullptr);
    }
}

void appDelegate::iba_OpenFolder(Control* sender)
{
    QString folder;
    if (sender == &model_.prefDefautDstRevealBt) {
        folder = stringByExpandingTildeInPath(model_.prefDefautDstPathStr.stringValue());
    } else if (sender == &model_.mainEncDstRevealBt) {
        const QString typed = model_.mainEncDstPathStr.stringValue();
        const QString inside = eventsFolder(typed);
        folder = !typed.isEmpty() && isFolder(inside) ? inside : stringByExpandingTildeInPath(typed);
    }
    if (folder.isEmpty() || !testPresenceCocoa(folder)) {
        displayAlertSheet(localizedString(QStringLiteral("D_go_dossier_destination1")), QString(), face_->window());
        return;
    }
    openFileFolder(folder);
}

void appDelegate::iba_menuDebugToggle()
{
    const bool on = model_.menuDebug.state() == 0;
    model_.menuDebug.setState(on ? 1 : 0);
    model_.menuDebug.setTitle(localizedString(on ? QStringLiteral("Menu_Debug0") : QStringLiteral("Menu_Debug1")));
    setDEBUG(on ? 1 : 0);
}

void appDelegate::iba_mail(Control* sender)
{
    const bool bugReport = sender == &model_.menuBugreport;
    const QString mailbox =
        textOf(infoValue(bugReport ? QStringLiteral("TVXMailBugreport") : QStringLiteral("TVXMailContact")));
    QString body = QStringLiteral("");
    if (bugReport) {
        body = localizedString(QStringLiteral("D_bugreport_mail"));
        revealInFinder(logsFolder());
    }
    const QString address = mailAddress(mailbox, model_.versionStr.stringValue(), ffRevisionInt(), body);
    desktopServices().openUrl(QUrl::fromEncoded(address.toUtf8()));
    if (bugReport) {
        displayAlertDelayed(localizedString(QStringLiteral("Menu_bugreport")),
                            localizedString(QStringLiteral("D_bugreport_alert")), QStringLiteral("OK"), QString(),
                            QString(), 0, mailAlertSeconds);
    }
}

} // namespace tavrix
