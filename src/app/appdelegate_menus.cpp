// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"

#include "app/alerttext.h"
#include "app/face.h"
#include "app/leftover.h"
#include "app/logs.h"
#include "app/machines.h"
#include "app/mailaddress.h"
#include "app/stepflags.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/runloopgate.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "platform/desktop.h"
#include "probe/ffprobes.h"

#include <QPointer>
#include <QUrl>

// Menu and button actions that start nothing: preferences, help, folders, logs, mail.
namespace tavrix
{

namespace
{

constexpr int mailAlertSeconds = 30;

QString infoText(const char* key)
{
    return textOf(infoValue(QLatin1String(key)));
}

} // namespace

void appDelegate::applicationDidFinishLaunching()
{
    model_.menuDebug.setTitle(alertText("Menu_Debug1"));
    model_.menuDebug.setState(getDEBUG());
    machines_->memory.recall();
    // The window is there first; a program that ends at once has no controller any more.
    RunLoopGate::instance().deliverLater([controller = QPointer<appDelegate>(this)] {
        if (controller) {
            controller->drive([&] {
                const QStringList sources = leftOverToGoOnWith(controller->session_, controller->machines_->analysis,
                                                               controller->machines_->memory);
                if (!sources.isEmpty()) {
                    controller->draggedFiles(sources);
                }
            });
        }
    });
}

void appDelegate::iba_menuPref()
{
    session_.face().openPreferencesSheet();
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
    session_.face().closePreferencesSheet();
    prefSynchronize();
}

void appDelegate::prefCheckCaptions()
{
    model_.showFormatCaption();
}

void appDelegate::chooseFormat(int out)
{
    if (!isOutputFormat(out)) {
        return;
    }
    model_.prefCheckMatrix.setSelectedSegment(out);
    prefCheckCaptions();
    prefWrite(pref::prefCheckMatrix, out);
}

void appDelegate::useDestinationEveryTime(bool every)
{
    const QString folder = model_.mainEncDstPathStr.stringValue();
    if (every && !folder.isEmpty()) {
        prefWrite(pref::prefDefautDstPathStr, folder);
        model_.prefDefautDstPathStr.setStringValue(folder);
    } else {
        prefDelete(pref::prefDefautDstPathStr);
        model_.prefDefautDstPathStr.setStringValue(QString());
    }
}

void appDelegate::iba_setColor()
{
    prefWrite(pref::prefColor, model_.prefColor.selectedSegment());
    model_.showColorImage();
}

void appDelegate::iba_drawerToggle()
{
    if (model_.drawer.isOpen()) {
        model_.drawer.close();
        return;
    }
    session_.face().ecran(QStringLiteral("b"), drawerHeight);
    model_.drawer.open();
}

void appDelegate::windowWillClose()
{
    iba_menuHelp(nullptr);
}

void appDelegate::iba_menuHelp(Control* sender)
{
    if (sender == nullptr) {
        session_.face().hideHelp();
        return;
    }
    session_.face().showHelp();
}

void appDelegate::iba_helpQtClose()
{
    session_.face().hideHelp();
}

void appDelegate::iba_openUrl()
{
    desktopServices().openUrl(QUrl(infoText("TVXWebSite")));
}

void appDelegate::iba_preview(int row)
{
    const BatchList& rows = model_.encBatchArrayController;
    if (row >= 0 && row < rows.count()) {
        session_.face().preview(rows.row(row).source());
    }
}

void appDelegate::iba_selectFolderBt(Control* sender)
{
    machines_->destination.choose(sender);
}

void appDelegate::iba_OpenFolder(Control* sender)
{
    machines_->destination.reveal(sender);
}

void appDelegate::iba_OpenFile(Control* sender)
{
    if (sender == &model_.menuDetailsLog) {
        openWith(detailsLogPath(), QStringLiteral(""));
    } else if (sender == &model_.menuResumeLog) {
        openWith(logResumePathStr(), QStringLiteral(""));
    } else if (getDEBUGDEV() != 0) {
        (void)session_.tell(QStringLiteral("iba_OpenFile")); // nothing follows
    }
}

void appDelegate::iba_menuDebugToggle()
{
    const bool on = model_.menuDebug.state() == 0;
    model_.menuDebug.setState(on ? 1 : 0);
    model_.menuDebug.setTitle(alertText(on ? "Menu_Debug0" : "Menu_Debug1"));
    setDEBUG(on ? 1 : 0);
}

void appDelegate::iba_mail(Control* sender)
{
    const bool bugReport = sender == &model_.menuBugreport;
    QString body = QStringLiteral("");
    if (bugReport) {
        body = alertText("D_bugreport_mail");
        revealInFinder(logsFolder());
    }
    const QString address = mailAddress(infoText(bugReport ? "TVXMailBugreport" : "TVXMailContact"),
                                        model_.versionStr.stringValue(), ffRevisionInt(), body);
    desktopServices().openUrl(QUrl::fromEncoded(address.toUtf8()));
    if (bugReport) {
        (void)session_.ask({alertText("Menu_bugreport"),
                            alertText("D_bugreport_alert"),
                            {QStringLiteral("OK")},
                            0,
                            mailAlertSeconds,
                            {}}); // nothing follows
    }
}

} // namespace tavrix
