// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/desktop/desktopbus.h"

class QWidget;

namespace tavrix
{

class appDelegate;
class RunCommands;

// Tells the desktop about a running batch: no sleep meanwhile, progress on the task bar, and when the window is not in
// front a notification at its start, with buttons to pause and to stop, and one at its end.
class EncodingPresence : public QObject
{
    Q_OBJECT
public:
    EncodingPresence(appDelegate& controller, QWidget& window, RunCommands& commands, const QDBusConnection& bus,
                     QObject* parent = nullptr);

private:
    void begin(int row);
    void showProgress(int row, float value, float maximum);
    void end(bool stopped);
    void showButtons();
    void obey(const QString& word);

    appDelegate& controller_;
    QWidget& window_;
    RunCommands& commands_;
    SleepInhibitor inhibitor_;
    DesktopNotifier notifier_;
    TaskbarProgress taskbar_;
    bool runs_ = false;
    bool hasButtons_ = false; // a notification with buttons is shown
    bool shownPaused_ = false;
};

} // namespace tavrix
