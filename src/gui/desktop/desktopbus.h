// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/desktop.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

#include <memory>
#include <utility>

// The desktop's services on the message bus. Every call is sent without waiting for its answer; a missing service is no
// error.
namespace tavrix
{

// Reveals files in the desktop's file manager; everything else, and what it cannot do, goes to the opener of the
// system.
class BusDesktopServices : public QObject, public DesktopServices
{
    Q_OBJECT
public:
    // Without a fallback the system's own opener.
    explicit BusDesktopServices(const QDBusConnection& bus, std::unique_ptr<DesktopServices> fallback = nullptr);
    ~BusDesktopServices() override;

    bool openUrl(const QUrl& url) override;
    bool openFileWith(const QString& path, const QString& application) override;
    bool reveal(const QString& path) override;
    void noteFileSystemChanged(const QString& path) override;

private:
    QDBusConnection bus_;
    std::unique_ptr<DesktopServices> fallback_;
};

// Keeps the machine awake while it is held.
class SleepInhibitor : public QObject
{
    Q_OBJECT
public:
    explicit SleepInhibitor(const QDBusConnection& bus, QObject* parent = nullptr);
    ~SleepInhibitor() override;

    // The reason is shown by the desktop to who asks why the machine does not sleep.
    void setInhibited(bool inhibited, const QString& reason = QString());

private:
    struct Service {
        QString name;
        QString path;
        QString interface;
    };
    void ask(const Service& service, const QString& reason);
    void release(const Service& service, quint32 cookie);

    QDBusConnection bus_;
    QList<Service> services_;
    QHash<QString, quint32> cookies_; // by service name
    bool inhibited_ = false;
};

// One notification of the desktop; a later one takes its place.
class DesktopNotifier : public QObject
{
    Q_OBJECT
public:
    explicit DesktopNotifier(const QDBusConnection& bus, QObject* parent = nullptr);
    // A word that comes back when the button is pressed, and the button's title.
    using Button = std::pair<QString, QString>;
    // Both texts are plain text.
    void notify(const QString& title, const QString& text, const QList<Button>& buttons = {});

Q_SIGNALS:
    void pressed(const QString& word);

private Q_SLOTS:
    void takeAction(quint32 id, const QString& word);

private:
    QDBusConnection bus_;
    quint32 last_ = 0;
};

// Progress on the launcher icon, where the desktop shows it.
class TaskbarProgress
{
public:
    explicit TaskbarProgress(const QDBusConnection& bus);
    // Between 0 and 1; hidden when not visible.
    void show(double progress, bool visible);

private:
    QDBusConnection bus_;
    double shown_ = -1;
    bool visible_ = false;
};

} // namespace tavrix
