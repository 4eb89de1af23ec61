// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/tasklauncher.h"
#include "support/temphome.h"

#include <QStringList>

#include <functional>
#include <sys/types.h>

namespace tavrix::test
{

// Path of the program that misbehaves on request.
[[nodiscard]] QString fakeChild();
// A list that runs it with these actions.
[[nodiscard]] QStringList fake(const QStringList& actions);

[[nodiscard]] int openDescriptors();
// True when this process has a child that is not reaped, running or not.
[[nodiscard]] bool hasChildren();
// State letter of a process; 0 when there is none.
[[nodiscard]] char processState(pid_t pid);
[[nodiscard]] bool isGone(pid_t pid);
// Number in a file that a child writes; 0 while it is not there.
[[nodiscard]] pid_t pidInFile(const QString& path);
[[nodiscard]] pid_t waitForPid(const QString& path);
[[nodiscard]] bool makeFifo(const QString& path);
// Lets the child go that waits on the FIFO; false when nobody waits.
[[nodiscard]] bool releaseFifo(const QString& path);

// Writes down every callback in order: "string:<text>", "data:<text>", "end:<status>", "suspend", "resume".
class Recorder : public TaskLauncherDelegate
{
public:
    void taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text) override;
    void taskLauncherDidReceiveNewData(taskLauncher* launcher, const QByteArray& data) override;
    void taskLauncherTaskDidEnd(taskLauncher* launcher) override;
    void taskLauncherTaskDidSuspend(taskLauncher* launcher) override;
    void taskLauncherTaskDidResume(taskLauncher* launcher) override;

    QStringList events;
    QString text;    // of all string callbacks
    QByteArray data; // of all data callbacks
    int ends = 0;
    int chunks = 0;
    std::function<void(taskLauncher*)> onOutput;
    std::function<void(taskLauncher*)> onEnd;
    std::function<void(taskLauncher*)> onResume;
};

} // namespace tavrix::test
