// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What keeps the controller still while a modal alert is up.

#include <QObject>

#include <deque>
#include <functional>

namespace tavrix
{

// Holds back everything that drives the controller while an application-modal alert or chooser is up: launcher output
// and ends, drops, open requests, zero-delay calls, control notifications. They wait in order and are delivered by the
// event loop after the modal call has returned and the step that raised it has finished. Main thread only.
class RunLoopGate : public QObject
{
    Q_OBJECT
public:
    static RunLoopGate& instance();

    void close(); // nests
    void open();  // the last one schedules the delivery
    // True while closed and while earlier calls still wait, so that nothing new overtakes them. A reader that is told
    // so waits for opened(). The last of the kept calls already runs with the gate open.
    [[nodiscard]] bool isClosed() const { return depth_ > 0 || !waiting_.empty(); }

    // Runs the call at once when the gate is open and no kept call waits or runs, else keeps it in order.
    void deliver(std::function<void()> call);
    // Runs the call from the event loop, never from inside this function, and not while the gate is closed.
    void deliverLater(std::function<void()> call);

Q_SIGNALS:
    // The gate is open again and the kept calls have run: readers may read.
    void opened();

private:
    void scheduleDrain();
    void drain();

    int depth_ = 0;
    bool draining_ = false;
    bool scheduled_ = false;
    std::deque<std::function<void()>> waiting_;
};

// Closes the gate for the time of a modal call.
class ModalGateCloser
{
public:
    ModalGateCloser() { RunLoopGate::instance().close(); }
    ~ModalGateCloser() { RunLoopGate::instance().open(); }
    ModalGateCloser(const ModalGateCloser&) = delete;
    ModalGateCloser& operator=(const ModalGateCloser&) = delete;
};

} // namespace tavrix
