// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The child processes of the machines.

#include "process/silencewatch.h"
#include "process/tasklauncher.h"

#include <functional>
#include <memory>

namespace tavrix
{

class Session;

// Makes the launchers of both machines.
class LauncherMaker
{
public:
    using Factory = std::function<taskLauncher*()>;

    // Receives every launcher's callbacks; not owned.
    explicit LauncherMaker(TaskLauncherDelegate& delegate) : delegate_(delegate) {}
    // An empty function returns to real processes.
    void setFactory(Factory factory) { factory_ = std::move(factory); }
    [[nodiscard]] bool makesRealProcesses() const { return !factory_; }
    // The caller owns it.
    [[nodiscard]] taskLauncher* make() const;

private:
    TaskLauncherDelegate& delegate_;
    Factory factory_;
};

// The one child that a machine can have at a time: from its launch until the machine lets go of it, which is later than
// the child's end.
class ToolChild
{
public:
    // The line is logged when a child is launched while another one is still held. Nothing is owned.
    ToolChild(Session& session, const LauncherMaker& maker, const char* forgottenLine);
    // Ends a child that still runs.
    ~ToolChild();
    ToolChild(const ToolChild&) = delete;
    ToolChild& operator=(const ToolChild&) = delete;

    // False for an empty list, and for ever once the program ends.
    [[nodiscard]] bool mayLaunch(const QStringList& arguments) const;
    // True when the child runs. When it could not be started it is held all the same; `failed` is called before the
    // beep.
    bool launch(const QStringList& arguments, const std::function<void()>& failed,
                const taskLauncher::Environment& environment = {});

    [[nodiscard]] bool isHeld() const { return launcher_ != nullptr; }
    // Null when none is held.
    [[nodiscard]] taskLauncher* launcher() const { return launcher_.get(); }
    void suspend();
    void resume();
    // The child has written something.
    void heard() { silence_.heard(); }
    // Time has passed. True when a child that runs, and is not paused, has been silent for that long.
    [[nodiscard]] bool isSilentAfter(qint64 milliseconds, qint64 limit);
    // Kills it; it is still held, and its end is reported from within.
    void kill();
    // Lets go of it. That may be done inside its own callbacks.
    void release() { launcher_.reset(); }
    // No callback comes from it any more.
    void silence();

private:
    struct Releaser {
        void operator()(taskLauncher* launcher) const;
    };

    Session& session_;
    const LauncherMaker& maker_;
    const char* forgottenLine_;
    std::unique_ptr<taskLauncher, Releaser> launcher_;
    SilenceWatch silence_;
};

} // namespace tavrix
