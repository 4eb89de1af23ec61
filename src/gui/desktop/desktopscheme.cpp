// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/desktopscheme.h"

#include "gui/widgets/theme.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tavrix
{

namespace
{

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");
constexpr uint wishesDark = 1;
constexpr uint wishesLight = 2;

} // namespace

std::optional<bool> darkWished(const QVariant& answer)
{
    QVariant value = answer;
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    bool isNumber = false;
    const uint wish = value.toUInt(&isNumber);
    if (!isNumber || (wish != wishesDark && wish != wishesLight)) {
        return std::nullopt;
    }
    return wish == wishesDark;
}

DesktopScheme::DesktopScheme(const QDBusConnection& bus, QObject* parent) : QObject(parent)
{
    QDBusConnection connection(bus);
    connection.connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                       SLOT(take(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("Read"));
    question << appearance << colorScheme;
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(question), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (!reply.isError()) {
            take(appearance, colorScheme, reply.value());
        }
        call->deleteLater();
    });
}

void DesktopScheme::take(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group != appearance || key != colorScheme) {
        return;
    }
    if (const std::optional<bool> dark = darkWished(value.variant())) {
        setDesktopDark(*dark);
    }
}

} // namespace tavrix
