// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

namespace tavrix
{

// Turns SIGTERM, SIGINT and SIGHUP into a signal of the event loop.
class EndSignals : public QObject
{
    Q_OBJECT
public:
    explicit EndSignals(QObject* parent = nullptr);
    ~EndSignals() override;

Q_SIGNALS:
    void received(); // once for each signal

private:
    QSocketNotifier* notifier_ = nullptr;
};

} // namespace tavrix
