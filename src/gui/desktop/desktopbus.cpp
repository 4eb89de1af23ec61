// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/desktopbus.h"

#include "base/bundle/bundle.h"
#include "base/text/log.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>

namespace tavrix
{

namespace
{

constexpr int replyMilliseconds = 3000;
constexpr double smallestStep = 0.005;

QDBusMessage call(const QString& service, const QString& path, const QString& interface, const QString& method)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setAutoStartService(false);
    return message;
}

} // namespace

BusDesktopServices::BusDesktopServices(const QDBusConnection& bus, std::unique_ptr<DesktopServices> fallback)
    : bus_(bus), fallback_(fallback ? std::move(fallback) : makeSystemDesktopServices())
{
}

BusDesktopServices::~BusDesktopServices() = default;

bool BusDesktopServices::openUrl(const QUrl& url)
{
    return fallback_->openUrl(url);
}

bool BusDesktopServices::openFileWith(const QString& path, const QString& application)
{
    return fallback_->openFileWith(path, application);
}

void BusDesktopServices::noteFileSystemChanged(const QString& path)
{
    fallback_->noteFileSystemChanged(path);
}

bool BusDesktopServices::reveal(const QString& path)
{
    if (!bus_.isConnected()) {
        return fallback_->reveal(path);
    }
    QDBusMessage message =
        call(QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
             QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    // The file manager may have to be started for this.
    message.setAutoStartService(true);
    const QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    message << QStringList{url.toString(QUrl::FullyEncoded)} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, replyMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, path](QDBusPendingCallWatcher* done) {
        if (done->isError() && !fallback_->reveal(path)) {
            logLine(QStringLiteral("reveal              :-( %@"), {path});
        }
        done->deleteLater();
    });
    return true;
}

SleepInhibitor::SleepInhibitor(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), bus_(bus), services_{{QStringLiteral("org.freedesktop.ScreenSaver"),
                                             QStringLiteral("/org/freedesktop/ScreenSaver"),
                                             QStringLiteral("org.freedesktop.ScreenSaver")},
                                            {QStringLiteral("org.freedesktop.PowerManagement"),
                                             QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
                                             QStringLiteral("org.freedesktop.PowerManagement.Inhibit")}}
{
}

SleepInhibitor::~SleepInhibitor()
{
    setInhibited(false);
}

void SleepInhibitor::setInhibited(bool inhibited, const QString& reason)
{
    if (inhibited == inhibited_ || !bus_.isConnected()) {
        return;
    }
    inhibited_ = inhibited;
    for (const Service& service : services_) {
        if (inhibited) {
            ask(service, reason);
        } else if (cookies_.contains(service.name)) {
            release(service, cookies_.take(service.name));
        }
    }
}

void SleepInhibitor::ask(const Service& service, const QString& reason)
{
    QDBusMessage message = call(service.name, service.path, service.interface, QStringLiteral("Inhibit"));
    message << bundleName() << reason;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, replyMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, service](QDBusPendingCallWatcher* done) {
        const QDBusPendingReply<quint32> reply = *done;
        if (reply.isValid()) {
            // The encode can have ended, and another begun, before the answer came.
            if (inhibited_ && !cookies_.contains(service.name)) {
                cookies_.insert(service.name, reply.value());
            } else {
                release(service, reply.value());
            }
        }
        done->deleteLater();
    });
}

void SleepInhibitor::release(const Service& service, quint32 cookie)
{
    QDBusMessage message = call(service.name, service.path, service.interface, QStringLiteral("UnInhibit"));
    message << cookie;
    bus_.send(message);
}

DesktopNotifier::DesktopNotifier(const QDBusConnection& bus, QObject* parent) : QObject(parent), bus_(bus)
{
    const QString service = QStringLiteral("org.freedesktop.Notifications");
    bus_.connect(service, QStringLiteral("/org/freedesktop/Notifications"), service, QStringLiteral("ActionInvoked"),
                 this, SLOT(takeAction(quint32, QString)));
}

void DesktopNotifier::takeAction(quint32 id, const QString& word)
{
    // Other programs' notifications are told to everybody too.
    if (id == last_ && id != 0) {
        Q_EMIT pressed(word);
    }
}

void DesktopNotifier::notify(const QString& title, const QString& text, const QList<Button>& buttons)
{
    if (!bus_.isConnected()) {
        return;
    }
    QDBusMessage message =
        call(QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
             QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    message.setAutoStartService(true);
    QStringList actions;
    for (const Button& button : buttons) {
        actions << button.first << button.second;
    }
    // Notification servers read the body as markup.
    message << bundleName() << last_ << QStringLiteral("tavrix") << title << text.toHtmlEscaped() << actions
            << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("tavrix")}} << -1;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, replyMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        const QDBusPendingReply<quint32> reply = *done;
        last_ = reply.isValid() ? reply.value() : last_;
        done->deleteLater();
    });
}

TaskbarProgress::TaskbarProgress(const QDBusConnection& bus) : bus_(bus) {}

void TaskbarProgress::show(double progress, bool visible)
{
    const bool moved = qAbs(progress - shown_) >= smallestStep;
    if (!bus_.isConnected() || (visible == visible_ && !(visible && moved))) {
        return;
    }
    shown_ = progress;
    visible_ = visible;
    QDBusMessage signal =
        QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/tavrix"),
                                   QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    signal << QStringLiteral("application://tavrix.desktop")
           << QVariantMap{{QStringLiteral("progress"), progress}, {QStringLiteral("progress-visible"), visible}};
    bus_.send(signal);
}

} // namespace tavrix
