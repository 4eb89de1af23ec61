// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/sleeppause.h"

#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "gui/desktop/runcommands.h"
#include "gui/widgets/windowtext.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tavrix
{

namespace
{

const QString loginService = QStringLiteral("org.freedesktop.login1");
const QString loginPath = QStringLiteral("/org/freedesktop/login1");
const QString loginInterface = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

SleepPause::SleepPause(appDelegate& controller, RunCommands& commands, const QDBusConnection& bus, QObject* parent)
    : QObject(parent), commands_(commands), bus_(bus)
{
    if (!bus_.isConnected()) {
        return;
    }
    bus_.connect(loginService, loginPath, loginInterface, QStringLiteral("PrepareForSleep"), this,
                 SLOT(prepareForSleep(bool)));
    connect(&controller, &appDelegate::rowStarted, this, &SleepPause::askForDelay);
    connect(&controller, &appDelegate::batchEnded, this, [this] {
        wantsDelay_ = false;
        delay_ = QDBusUnixFileDescriptor();
    });
}

void SleepPause::askForDelay()
{
    if (wantsDelay_) {
        return;
    }
    wantsDelay_ = true;
    QDBusMessage message =
        QDBusMessage::createMethodCall(loginService, loginPath, loginInterface, QStringLiteral("Inhibit"));
    message << QStringLiteral("sleep") << bundleName() << windowText("Win_inhibitReason") << QStringLiteral("delay");
    message.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *done;
        // The batch can have ended before the answer came.
        if (reply.isValid() && wantsDelay_) {
            delay_ = reply.value();
        }
        done->deleteLater();
    });
}

void SleepPause::prepareForSleep(bool sleeps)
{
    if (sleeps) {
        pausedForSleep_ = commands_.canPause();
        if (pausedForSleep_) {
            commands_.pause();
        }
        // After the pause, which is queued as well.
        QMetaObject::invokeMethod(
            this, [this] { delay_ = QDBusUnixFileDescriptor(); }, Qt::QueuedConnection);
        return;
    }
    if (std::exchange(pausedForSleep_, false)) {
        commands_.resume();
    }
    if (std::exchange(wantsDelay_, false)) {
        askForDelay();
    }
}

} // namespace tavrix
