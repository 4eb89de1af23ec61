// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/notificationcenter.h"

#include "base/dialogue/runloopgate.h"

#include <algorithm>

namespace tavrix
{

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(QObject* observer, const QString& name, const QVariant& object,
                                     std::function<void()> handler)
{
    entries_.removeIf([](const Entry& entry) { return entry.observer.isNull(); });
    entries_.append({observer, name, object, std::move(handler)});
}

void NotificationCenter::removeObserver(QObject* observer)
{
    entries_.removeIf([observer](const Entry& entry) { return entry.observer.isNull() || entry.observer == observer; });
}

void NotificationCenter::post(const QString& name, const QVariant& object)
{
    RunLoopGate::instance().deliver([this, name, object] {
        // Handlers may add, remove and destroy observers: a copy is walked, and whoever has left meanwhile is skipped.
        const QList<Entry> snapshot = entries_;
        for (const Entry& entry : snapshot) {
            if (entry.observer.isNull() || entry.name != name || entry.object != object) {
                continue;
            }
            const bool registered = std::any_of(entries_.cbegin(), entries_.cend(), [&entry](const Entry& current) {
                return current.observer == entry.observer;
            });
            if (registered) {
                entry.handler();
            }
        }
    });
}

} // namespace tavrix
