// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QVariantMap>

namespace tavrix::test
{

// Receives the progress of launcher icons, as a task bar does.
class ProgressListener : public QObject
{
    Q_OBJECT
public:
    QString application;
    QList<QVariantMap> updates;

public Q_SLOTS:
    void update(const QString& uri, const QVariantMap& properties)
    {
        application = uri;
        updates << properties;
    }
};

} // namespace tavrix::test
