#pragma once

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
    static NotificationCenter& defaultCenter();

    // Calls `handler` for notifications of that name whose object equals `object`, as long as `observer` lives.
    void addObserver(QObject* observer, const QString& name, const QVariant& object, std::function<void()> handler);
    void removeObserver(QObject* observer);
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
