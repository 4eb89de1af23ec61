// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Long runs of tools that are listened to, paused and stopped.

#include "process/childactivity.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>

namespace tavrix
{

class taskLauncher;

// Receiver of a launcher's callbacks, all made on the main thread. Every callback is optional.
class TaskLauncherDelegate
{
public:
    virtual ~TaskLauncherDelegate() = default;
    virtual void taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text);
    virtual void taskLauncherDidReceiveNewData(taskLauncher* launcher, const QByteArray& data);
    virtual void taskLauncherTaskDidEnd(taskLauncher* launcher);
    virtual void taskLauncherTaskDidSuspend(taskLauncher* launcher);
    virtual void taskLauncherTaskDidResume(taskLauncher* launcher);
};

// Names of the control notifications; their object is the value of uid().
inline const QString fabKillTasks = QStringLiteral("fabKillTasks");
inline const QString fabPauseTasks = QStringLiteral("fabPauseTasks");
inline const QString fabResumeTasks = QStringLiteral("fabResumeTasks");

// Runs one chain of child processes connected by pipes, delivers what the last one writes, and reports the end of the
// chain exactly once: after the last process has exited and both of its streams are drained. One launch per object; it
// may be released (deleteLater or a shared pointer) inside its own callback.
class taskLauncher : public QObject
{
    Q_OBJECT
public:
    // Status after terminate(): impossible as a real exit status.
    static constexpr int statusInterrupted = -7654312;

    // Running, controlling and asking are virtual, so that a driver without processes can stand in.
    explicit taskLauncher(QObject* parent = nullptr);
    ~taskLauncher() override;

    // 0 on success, 1 for an empty list, 2 for a "|" without a command before it, 3 when a program cannot be found.
    // Elements "|" separate commands; a leading "~" is expanded except in elements that hold "://".
    virtual int launchTasksWithArguments(const QStringList& arguments);

    void setDelegate(TaskLauncherDelegate* delegate); // not owned
    [[nodiscard]] TaskLauncherDelegate* delegate() const;
    // Deliver bytes instead of text; call before launching.
    void dontConvertDataToString(bool flag);
    // Variables on top of the program's own, which every process of the next launch gets. None by default.
    using Environment = QList<std::pair<QString, QString>>;
    void setEnvironment(const Environment& environment);
    [[nodiscard]] const Environment& environment() const;
    // The chain's identity: seconds since 1970 at the first request.
    [[nodiscard]] int uid();

    [[nodiscard]] virtual bool isRunning() const;
    [[nodiscard]] virtual bool isSuspended() const;
    // Exit status of the last process (the signal's number when a signal ended it, 127 when it could not be started),
    // or statusInterrupted after a kill.
    [[nodiscard]] virtual int terminationStatus() const;
    // Whether the last process was ended by a signal other than a kill by this object.
    [[nodiscard]] virtual bool endedBySignal() const;

    // What the chain's processes, and those that they have started, have done so far.
    [[nodiscard]] virtual ChildActivity activity() const;

    // Stops the processes, last to first, and tells the delegate. Nothing happens to a chain that is paused or has
    // ended.
    virtual void suspend();
    // Continues them, first to last, and tells the delegate. Nothing happens to a chain that is not paused.
    virtual void resume();
    // Kills what still runs and reports the end, once.
    virtual void terminate();

private:
    struct Private;
    std::unique_ptr<Private> d_;
};

} // namespace tavrix
