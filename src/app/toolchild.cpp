// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/toolchild.h"

#include "app/face.h"
#include "app/oldtools.h"
#include "app/session.h"
#include "base/dialogue/runloopgate.h"
#include "base/text/log.h"

#include <QCoreApplication>

namespace tavrix
{

taskLauncher* LauncherMaker::make() const
{
    taskLauncher* launcher = factory_ ? factory_() : new taskLauncher;
    launcher->setDelegate(&delegate_);
    return launcher;
}

// Launchers are released inside their own callbacks, so they must outlive the current call.
void ToolChild::Releaser::operator()(taskLauncher* launcher) const
{
    launcher->setDelegate(nullptr);
    launcher->deleteLater();
}

ToolChild::ToolChild(Session& session, const LauncherMaker& maker, const char* forgottenLine)
    : session_(session), maker_(maker), forgottenLine_(forgottenLine)
{
}

ToolChild::~ToolChild()
{
    // With the machine goes the event loop that would delete it later: the child would outlive the program.
    if (taskLauncher* launcher = launcher_.release()) {
        launcher->setDelegate(nullptr);
        delete launcher;
    }
}

bool ToolChild::mayLaunch(const QStringList& arguments) const
{
    return !arguments.isEmpty() && !session_.isEnding();
}

bool ToolChild::launch(const QStringList& arguments, const std::function<void()>& failed,
                       const taskLauncher::Environment& environment)
{
    if (!mayLaunch(arguments)) {
        return false;
    }
    if (isHeld()) {
        logLine(QLatin1String(forgottenLine_));
    }
    launcher_.reset(maker_.make());
    launcher_->setEnvironment(environment +
                              taskLauncher::Environment{{QString::fromLatin1(ownerVariable),
                                                         QString::number(QCoreApplication::applicationPid())}});
    silence_.begin();
    const int result = launcher_->launchTasksWithArguments(arguments);
    if (result == 0) {
        return true;
    }
    failed();
    session_.face().beep();
    logLine(QStringLiteral("Erreur au lancement = %d"), {result});
    return false;
}

bool ToolChild::isSilentAfter(qint64 milliseconds, qint64 limit)
{
    // What a child writes under a modal alert is not read: it may have to wait for that.
    if (!launcher_ || !launcher_->isRunning() || launcher_->isSuspended() || RunLoopGate::instance().isClosed()) {
        silence_.begin();
        return false;
    }
    return silence_.pass(milliseconds, limit, [this] { return launcher_->activity(); });
}

void ToolChild::suspend()
{
    if (launcher_) {
        launcher_->suspend();
    }
}

void ToolChild::resume()
{
    if (launcher_) {
        launcher_->resume();
    }
}

void ToolChild::kill()
{
    if (launcher_) {
        launcher_->terminate();
    }
}

void ToolChild::silence()
{
    if (launcher_) {
        launcher_->setDelegate(nullptr);
    }
}

} // namespace tavrix
