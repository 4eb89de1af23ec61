// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/runloopgate.h"

#include <QMetaObject>

#include <utility>

namespace tavrix
{

RunLoopGate& RunLoopGate::instance()
{
    static RunLoopGate gate;
    return gate;
}

void RunLoopGate::close()
{
    ++depth_;
}

void RunLoopGate::open()
{
    Q_ASSERT(depth_ > 0);
    if (depth_ > 0 && --depth_ == 0) {
        scheduleDrain();
    }
}

void RunLoopGate::deliver(std::function<void()> call)
{
    if (isClosed() || draining_) {
        waiting_.push_back(std::move(call));
        return;
    }
    call();
}

void RunLoopGate::deliverLater(std::function<void()> call)
{
    QMetaObject::invokeMethod(
        this, [this, kept = std::move(call)] { deliver(kept); }, Qt::QueuedConnection);
}

void RunLoopGate::scheduleDrain()
{
    if (!scheduled_) {
        scheduled_ = true;
        QMetaObject::invokeMethod(
            this, [this] { drain(); }, Qt::QueuedConnection);
    }
}

void RunLoopGate::drain()
{
    scheduled_ = false;
    if (depth_ > 0 || draining_) {
        return;
    }
    draining_ = true;
    // A call that raised a modal alert has scheduled the rest anew: its own step comes first to an end.
    while (depth_ == 0 && !scheduled_ && !waiting_.empty()) {
        const std::function<void()> call = std::move(waiting_.front());
        waiting_.pop_front();
        call();
    }
    draining_ = false;
    if (depth_ == 0 && !scheduled_ && waiting_.empty()) {
        Q_EMIT opened();
    }
}

} // namespace tavrix
