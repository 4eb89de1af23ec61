// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One child of the program, started by the one spawn and watched by the event loop.

#include "sys/descriptor.h"
#include "sys/result.h"
#include "sys/spawn.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tavrix
{

// What to start and how its streams are connected. Descriptors stay the caller's.
struct ChildSetup {
    QString program;                                // path; no search in PATH takes place
    QStringList arguments;                          // without the program itself
    QString name;                                   // what the program is told its name is; nothing: its path
    QString workingFolder;                          // nothing or "": the parent's
    QList<std::pair<QString, QString>> environment; // set on top of the parent's
    bool toolLocale = false;                        // LC_CTYPE=en_US.UTF-8, so that tools print file names in UTF-8
    int input = SpawnRequest::nullDevice;
    int output = SpawnRequest::inherited;
    int error = SpawnRequest::inherited;
};

// One child process: leader of a process group of its own, killed by the system when this program dies, started with
// default signal handling and no other descriptors. Its group is signalled only while it is not reaped, so that a
// signal never hits a stranger that was given the same number.
class ChildProcess
{
public:
    // Status of a process that the system could not start.
    static constexpr int statusNotStarted = 127;

    // Main thread only: the system kills a child together with the thread that has started it.
    [[nodiscard]] static Result<ChildProcess, QString> start(const ChildSetup& setup);
    // A copy of this program that does this work and ends with its answer; see `spawnCopy`.
    [[nodiscard]] static Result<ChildProcess, QString> startCopy(const std::function<int()>& work);

    [[nodiscard]] pid_t pid() const { return pid_; }
    // Becomes readable when the process has ended.
    [[nodiscard]] int exitDescriptor() const { return exit_.get(); }

    // Signals the child and whatever it has started; a failure is logged. Nothing happens once it is reaped.
    void signalGroup(int signal) const;
    // True once the process has ended and is reaped; never waits.
    bool reapIfEnded();
    // Exit status, or the number of the signal that ended it. Valid after reaping.
    [[nodiscard]] int status() const { return status_; }
    // Whether that is the number of a signal. Valid after reaping.
    [[nodiscard]] bool endedBySignal() const { return bySignal_; }

private:
    ChildProcess() = default;
    [[nodiscard]] static Result<ChildProcess, QString> watched(const Result<pid_t>& started);

    pid_t pid_ = -1;
    Descriptor exit_;
    bool reaped_ = false;
    int status_ = statusNotStarted;
    bool bySignal_ = false;
};

// Kills the groups of all children that are not reaped, in order, waits a moment for their end, and leaves whatever
// takes longer to the event loop. The list is empty afterwards.
void killAndReap(std::vector<ChildProcess>& children);

} // namespace tavrix
