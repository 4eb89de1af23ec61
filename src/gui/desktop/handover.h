// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A second start with files hands them to the copy that runs.

#include <QLocalServer>
#include <QObject>
#include <QStringList>

class QLocalSocket;

namespace tavrix
{

// The listening end, in the copy that runs: one for a user and a home folder.
class Handover : public QObject
{
    Q_OBJECT
public:
    // Where both ends meet: a socket in a folder of the user's own; nothing when there is no such folder.
    [[nodiscard]] static QString socketPath();
    // Gives the paths to the copy that runs. False when none takes them: nothing has been handed over then.
    [[nodiscard]] static bool handOver(const QStringList& paths);

    explicit Handover(QObject* parent = nullptr);
    // False when no other start will find this copy. The caller holds the lock of the running copy: a socket that is
    // left over is nobody's.
    bool listen();

Q_SIGNALS:
    // Full paths; empty when only the window was wished for.
    void arrived(const QStringList& paths);

private:
    void takeConnection();
    void takeText(QLocalSocket* socket);

    QLocalServer server_;
};

} // namespace tavrix
