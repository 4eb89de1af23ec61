// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A message bus of the test's own.

#include "support/waituntil.h"

#include <QDBusConnection>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <optional>

namespace tavrix::test
{

// Two connections to it: one plays the services, the other is the program's.
class TestBus
{
public:
    ~TestBus()
    {
        server_.reset();
        client_.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        daemon_.terminate();
        daemon_.waitForFinished();
    }

    [[nodiscard]] static QString program() { return QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")); }
    // False when it could not be started.
    [[nodiscard]] bool start()
    {
        daemon_.start(program(), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                  QStringLiteral("--print-address"), QStringLiteral("--nopidfile")});
        if (!daemon_.waitForStarted() || !waitUntil([this] { return daemon_.canReadLine(); })) {
            return false;
        }
        const QString address = QString::fromUtf8(daemon_.readLine()).trimmed();
        server_.emplace(QDBusConnection::connectToBus(address, QStringLiteral("server")));
        client_.emplace(QDBusConnection::connectToBus(address, QStringLiteral("client")));
        return server_->isConnected() && client_->isConnected();
    }
    [[nodiscard]] QDBusConnection& server() { return *server_; }
    [[nodiscard]] QDBusConnection& client() { return *client_; }

private:
    QProcess daemon_;
    std::optional<QDBusConnection> server_;
    std::optional<QDBusConnection> client_;
};

} // namespace tavrix::test
