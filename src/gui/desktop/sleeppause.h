// SPDX-License-Identifier: GPL-3.0-or-later
// Nothing is encoded while the machine goes to sleep.
#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace tavrix
{

class appDelegate;
class RunCommands;

// Pauses the encoder before the machine sleeps and lets it go on afterwards; a pause made by the user stays. While a
// batch runs the login service is asked to wait for that.
class SleepPause : public QObject
{
    Q_OBJECT
public:
    // The bus is the system's; a missing service is no error.
    SleepPause(appDelegate& controller, RunCommands& commands, const QDBusConnection& bus, QObject* parent = nullptr);

private Q_SLOTS:
    void prepareForSleep(bool sleeps);

private:
    void askForDelay();

    RunCommands& commands_;
    QDBusConnection bus_;
    QDBusUnixFileDescriptor delay_; // the machine does not sleep before it is closed
    bool wantsDelay_ = false;
    bool pausedForSleep_ = false;
};

} // namespace tavrix
