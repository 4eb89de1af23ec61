// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

namespace tavrix
{

// What the controller asks of its face (window, console, test) besides alerts and desktop services. The defaults do
// nothing, so that a face implements what it has.
class ApplicationFace
{
public:
    virtual ~ApplicationFace() = default;

    // The window that sheets belong to; null where alerts are modal.
    virtual QObject* window() { return nullptr; }
    // Folder chooser, application-modal. A writable folder, or nothing when cancelled or not writable.
    virtual QString selectFolder(const QString& title);
    virtual void beep() {}
    // Grows the window toward a side ("l", "b", "r", "t") by delta + 50 and keeps it on a screen.
    virtual void ecran(const QString& side, float delta);
    // Replaces the marked texts of windows, views and menus.
    virtual void localise() {}
    virtual void openPreferencesSheet() {}
    virtual void closePreferencesSheet() {}
    virtual bool isHelpVisible() { return false; }
    virtual void showHelp() {}
    virtual void hideHelp() {}
    // Plays a source; a full path.
    virtual void preview(const QString& path);
    // Whether the detail log takes over standard output and error at start-up.
    virtual bool redirectsOutput() { return true; }
    // Whether a person is asked at the start about sources that an earlier run has left unread.
    virtual bool offersLeftOver() { return false; }
    // Asks the application to end its event loop with status 0.
    virtual void terminate() {}
};

} // namespace tavrix
