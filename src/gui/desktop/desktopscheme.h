// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether the desktop wishes dark or light windows.

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <optional>

namespace tavrix
{

// What the desktop's portal answers: 1 dark, 2 light, else no wish. The value may be wrapped more than once.
[[nodiscard]] std::optional<bool> darkWished(const QVariant& answer);

// Asks the desktop's portal, without waiting, and follows its changes into the theme. Without a portal nothing changes.
class DesktopScheme : public QObject
{
    Q_OBJECT
public:
    explicit DesktopScheme(const QDBusConnection& bus, QObject* parent = nullptr);

private Q_SLOTS:
    void take(const QString& group, const QString& key, const QDBusVariant& value);
};

} // namespace tavrix
