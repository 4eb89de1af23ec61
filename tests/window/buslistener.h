// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace tavrix::test
{

// Hears which properties an object on the message bus says to have changed.
class BusListener : public QObject
{
    Q_OBJECT
public:
    QVariantMap latest;
    QStringList states; // in order

public Q_SLOTS:
    void changed(const QString& /*interface*/, const QVariantMap& properties, const QStringList& /*invalid*/)
    {
        latest.insert(properties);
        if (properties.contains(QStringLiteral("State"))) {
            states << properties.value(QStringLiteral("State")).toString();
        }
    }
};

} // namespace tavrix::test
