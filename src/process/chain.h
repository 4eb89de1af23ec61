// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Commands connected by pipes, from an argument list to running processes.

#include "process/childprocess.h"

#include <QList>

namespace tavrix
{

struct ChainCommand {
    QString program; // absolute path
    QStringList arguments;
};

// Commands of an argument list with "|" between them. 0, or 2 for a "|" without a command before it, or 3 when a
// program cannot be found; the whole list is split before any program is looked up.
[[nodiscard]] int parsedChain(const QStringList& list, QList<ChainCommand>& commands);

// Started processes, each one's output connected to the next one's input, with the read ends of the last one's streams.
struct Chain {
    std::vector<ChildProcess> processes;
    Descriptor output;
    Descriptor error;
    bool lastExists = false; // false when the system could not start the last process
};

// Starts first to last, each with these variables on top of this program's. A process that cannot be started is logged;
// the others run.
[[nodiscard]] Chain startChain(const QList<ChainCommand>& commands,
                               const QList<std::pair<QString, QString>>& environment = {});

} // namespace tavrix
