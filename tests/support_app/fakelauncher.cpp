// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_app/fakelauncher.h"

#include "base/dialogue/runloopgate.h"

#include <QPointer>

namespace tavrix::test
{

FakeLauncher::FakeLauncher(LaunchHandler onLaunch) : onLaunch_(std::move(onLaunch))
{
    connect(&RunLoopGate::instance(), &RunLoopGate::opened, this, [this] { deliver(); });
}

int FakeLauncher::launchTasksWithArguments(const QStringList& arguments)
{
    arguments_ = arguments;
    if (arguments.isEmpty()) {
        return 1;
    }
    running_ = true;
    const int result = onLaunch_(this, arguments);
    started_ = result == 0;
    if (!firstWords_.isEmpty()) {
        write(firstWords_);
    }
    return result;
}

void FakeLauncher::suspend()
{
    if (!started_ || !running_ || suspended_) {
        return;
    }
    suspended_ = true;
    if (delegate() != nullptr) {
        delegate()->taskLauncherTaskDidSuspend(this);
    }
}

void FakeLauncher::resume()
{
    if (!started_ || !suspended_) {
        return;
    }
    suspended_ = false;
    if (delegate() != nullptr) {
        delegate()->taskLauncherTaskDidResume(this);
    }
}

void FakeLauncher::terminate()
{
    running_ = false;
    if (!started_) {
        return;
    }
    waiting_.clear();
    const QPointer<FakeLauncher> alive(this);
    resume();
    if (!alive) {
        return;
    }
    if (!endedByItself_) {
        status_ = statusInterrupted;
    }
    if (delegate() != nullptr && !reported_) {
        reported_ = true;
        delegate()->taskLauncherTaskDidEnd(this);
    }
}

void FakeLauncher::write(const QString& text)
{
    keep(
        [this, text] {
            if (delegate() != nullptr) {
                delegate()->taskLauncherDidReceiveNewString(this, text);
            }
        },
        false);
}

void FakeLauncher::end(int status)
{
    keep(
        [this, status] {
            status_ = status;
            endedByItself_ = true;
            terminate();
        },
        true);
}

void FakeLauncher::endBySignal(int signal)
{
    bySignal_ = true;
    end(signal);
}

// The last thing it does is the delivery, which may destroy this object.
void FakeLauncher::keep(std::function<void()> event, bool isEnd)
{
    if (!started_ || !running_ || ending_) {
        return;
    }
    ending_ = isEnd;
    waiting_.push_back(std::move(event));
    deliver();
}

void FakeLauncher::deliver()
{
    const QPointer<FakeLauncher> alive(this);
    while (alive && !waiting_.empty() && !RunLoopGate::instance().isClosed()) {
        const std::function<void()> event = waiting_.front();
        waiting_.erase(waiting_.begin());
        event();
    }
}

} // namespace tavrix::test
