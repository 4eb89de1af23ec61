// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <functional>

namespace tavrix::test
{

// Serves the event loop until the condition holds; false when it still does not after that time. Conditions outside of
// the event loop (files, other processes) are looked at every few milliseconds.
inline bool waitUntil(const std::function<bool()>& condition, int msDeadline = 10000)
{
    const QDeadlineTimer deadline(msDeadline);
    QTimer tick;
    tick.start(5);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        // processEvents leaves objects that asked for their deletion alone.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

} // namespace tavrix::test
