// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/unixsignals.h"

#include "base/text/log.h"

#include <QSocketNotifier>

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tavrix
{

namespace
{

sigset_t watchedSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGTSTP}) {
        sigaddset(&set, number);
    }
    return set;
}

} // namespace

UnixSignals::UnixSignals(QObject* parent) : QObject(parent)
{
    const sigset_t set = watchedSignals();
    // A signal file needs the signals blocked; children start with an empty mask of their own.
    if (::sigprocmask(SIG_BLOCK, &set, nullptr) != 0) {
        logLine(QStringLiteral("signals             :-( %@"), {std::strerror(errno)});
        return;
    }
    const int descriptor = watchedSignalsFile();
    if (descriptor < 0) {
        logLine(QStringLiteral("signals             :-( %@"), {std::strerror(errno)});
        ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
        return;
    }
    notifier_ = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &UnixSignals::readSignals);
}

UnixSignals::~UnixSignals()
{
    if (notifier_ != nullptr) {
        const auto descriptor = static_cast<int>(notifier_->socket());
        delete notifier_;
        ::close(descriptor);
        const sigset_t set = watchedSignals();
        ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
    }
}

void UnixSignals::readSignals()
{
    signalfd_siginfo info = {};
    while (::read(static_cast<int>(notifier_->socket()), &info, sizeof info) == sizeof info) {
        if (info.ssi_signo == SIGINT) {
            Q_EMIT interrupted();
        } else if (info.ssi_signo == SIGTSTP) {
            Q_EMIT aboutToBeStopped();
            ::kill(::getpid(), SIGSTOP);
            Q_EMIT continued();
        } else {
            Q_EMIT terminated();
        }
    }
}

int watchedSignalsFile()
{
    const sigset_t set = watchedSignals();
    return ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

bool endingSignalWaits()
{
    sigset_t waiting;
    sigemptyset(&waiting);
    ::sigpending(&waiting);
    if (sigismember(&waiting, SIGTSTP) == 1) {
        sigset_t stop;
        sigemptyset(&stop);
        sigaddset(&stop, SIGTSTP);
        const timespec now = {0, 0};
        if (::sigtimedwait(&stop, nullptr, &now) == SIGTSTP) {
            ::kill(::getpid(), SIGSTOP);
        }
    }
    return sigismember(&waiting, SIGINT) == 1 || sigismember(&waiting, SIGTERM) == 1 ||
           sigismember(&waiting, SIGHUP) == 1;
}

} // namespace tavrix
