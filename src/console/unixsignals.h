#pragma once

#include <QObject>

class QSocketNotifier;

namespace tavrix {

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
    void terminated();       // SIGTERM, SIGHUP
    void aboutToBeStopped(); // SIGTSTP, before the process really stops
    void continued();        // after it goes on

private:
    void readSignals();

    QSocketNotifier* notifier_ = nullptr;
};

} // namespace tavrix
