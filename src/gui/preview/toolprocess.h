// SPDX-License-Identifier: GPL-3.0-or-later
// A program of ours at work for a window: what it writes, and how it ends.
#pragma once

#include "process/childprocess.h"

#include <QByteArray>
#include <QObject>
#include <QStringList>

class QSocketNotifier;

namespace tavrix
{

class ToolProcess : public QObject
{
    Q_OBJECT
public:
    explicit ToolProcess(QObject* parent = nullptr);
    // Asks it to end, gives it a moment to clean up, and then ends it.
    ~ToolProcess() override;

    // The tool lies beside this program. False when it cannot be started.
    bool start(const QString& tool, const QStringList& arguments);
    [[nodiscard]] bool isRunning() const { return !child_.empty(); }
    // It cleans up and ends by itself; ended() follows.
    void askToEnd();

Q_SIGNALS:
    void wrote(const QByteArray& bytes); // of both streams
    // Once for each start; status 128 and above: a signal.
    void ended(int status);

private:
    void takeOutput();
    void takeEnd();
    void stopListening();

    std::vector<ChildProcess> child_; // one, or none
    Descriptor pipe_;
    QSocketNotifier* output_ = nullptr;
    QSocketNotifier* exit_ = nullptr;
};

} // namespace tavrix
