// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

namespace tavrix
{

// Turns termination and job-control signals into calls from the event loop.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    explicit UnixSignals(QObject* parent = nullptr);
    ~UnixSignals() override;
    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;

Q_SIGNALS:
    void interrupted();      // SIGINT
    void terminated();       // SIGTERM, SIGHUP, and SIGPIPE: whoever read the output has gone
    void aboutToBeStopped(); // SIGTSTP, before the process really stops
    void continued();        // after it goes on

private:
    void readSignals();

    QSocketNotifier* notifier_ = nullptr;
};

// A signal file that can be read when a watched signal waits: for a wait without an event loop. The caller only polls
// and closes it; -1 when it cannot be had.
[[nodiscard]] int watchedSignalsFile();
// True when a watched signal that ends the batch or the program waits; it stays waiting. A waiting stop by the terminal
// is obeyed here and now.
[[nodiscard]] bool endingSignalWaits();

} // namespace tavrix
