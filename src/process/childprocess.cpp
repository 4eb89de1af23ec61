// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/childprocess.h"

#include "base/files/posixfile.h"
#include "base/text/log.h"
#include "sys/childend.h"
#include "sys/spawn.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <memory>
#include <poll.h>
#include <sys/wait.h>

namespace tavrix
{

namespace
{

constexpr int killWaitMs = 500;

SpawnRequest requestFor(const ChildSetup& setup)
{
    SpawnRequest request;
    request.program = setup.program.toStdString();
    request.arguments.push_back(setup.name.isNull() ? request.program : setup.name.toStdString());
    for (const QString& argument : setup.arguments) {
        request.arguments.push_back(argument.toStdString());
    }
    request.workingFolder = setup.workingFolder.toStdString();
    if (setup.toolLocale) {
        request.environment = {{"LC_CTYPE", "en_US.UTF-8"}};
    }
    for (const auto& [name, value] : setup.environment) {
        request.environment.emplace_back(name.toStdString(), value.toStdString());
    }
    request.input = setup.input;
    request.output = setup.output;
    request.error = setup.error;
    request.ownGroup = true;
    return request;
}

void waitUntilEnded(const ChildProcess& child, const QDeadlineTimer& deadline)
{
    pollfd watched = {child.exitDescriptor(), POLLIN, 0};
    while (poll(&watched, 1, static_cast<int>(deadline.remainingTime())) < 0 && errno == EINTR) {
    }
}

void reapLater(ChildProcess&& child)
{
    if (!QCoreApplication::instance()) {
        return;
    }
    const auto kept = std::make_shared<ChildProcess>(std::move(child));
    auto* notifier = new QSocketNotifier(kept->exitDescriptor(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, kept] {
        if (kept->reapIfEnded()) {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    });
}

} // namespace

Result<ChildProcess, QString> ChildProcess::start(const ChildSetup& setup)
{
    return watched(spawn(requestFor(setup)));
}

Result<ChildProcess, QString> ChildProcess::startCopy(const std::function<int()>& work)
{
    return watched(spawnCopy(work));
}

Result<ChildProcess, QString> ChildProcess::watched(const Result<pid_t>& started)
{
    if (!started) {
        return Failure{QString::fromStdString(started.reason())};
    }
    ChildProcess child;
    child.exit_ = openExitDescriptor(*started);
    if (!child.exit_.isOpen()) {
        const QString reason = systemErrorText();
        kill(-*started, SIGKILL);
        waitpid(*started, nullptr, 0);
        return Failure{reason};
    }
    child.pid_ = *started;
    return child;
}

void ChildProcess::signalGroup(int signal) const
{
    if (reaped_) {
        return;
    }
    if (kill(-pid_, signal) != 0 && errno != ESRCH) {
        logLine(QStringLiteral("signal %d to %d       :-( %@"), {signal, pid_, systemErrorText()});
    }
}

bool ChildProcess::reapIfEnded()
{
    if (reaped_) {
        return true;
    }
    const Result<std::optional<ChildEnd>> end = tavrix::reapIfEnded(pid_);
    if (end && !*end) {
        return false;
    }
    reaped_ = true;
    exit_.reset();
    if (end) {
        status_ = (*end)->code;
        bySignal_ = (*end)->bySignal;
    } else {
        logLine(QStringLiteral("exit status of %d     :-( %@"), {pid_, QString::fromStdString(end.reason())});
    }
    return true;
}

void killAndReap(std::vector<ChildProcess>& children)
{
    for (const ChildProcess& child : children) {
        child.signalGroup(SIGKILL);
    }
    const QDeadlineTimer deadline(killWaitMs);
    for (ChildProcess& child : children) {
        if (child.reapIfEnded()) {
            continue;
        }
        waitUntilEnded(child, deadline);
        if (!child.reapIfEnded()) {
            reapLater(std::move(child));
        }
    }
    children.clear();
}

} // namespace tavrix
