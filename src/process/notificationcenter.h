// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How a part of the program reaches another one that it knows by a name and a number only.

#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <functional>

namespace tavrix
{

// The default notification centre: named notifications with an object, compared by value. Main thread only. A posted
// notification waits while the RunLoopGate is closed.
class NotificationCenter
{
public:
    // The only one there is.
    static NotificationCenter& defaultCenter();

    // Calls `handler` for notifications of that name whose object equals `object`, as long as `observer` lives.
    void addObserver(QObject* observer, const QString& name, const QVariant& object, std::function<void()> handler);
    // Forgets everything the observer was added for.
    void removeObserver(QObject* observer);
    // Calls the handlers in the order in which they were added.
    void post(const QString& name, const QVariant& object);

private:
    struct Entry {
        QPointer<QObject> observer;
        QString name;
        QVariant object;
        std::function<void()> handler;
    };
    QList<Entry> entries_;
};

} // namespace tavrix
