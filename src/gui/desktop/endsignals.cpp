// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/endsignals.h"

#include "base/text/log.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace tavrix
{

namespace
{

constexpr std::array<int, 3> endSignals{SIGTERM, SIGINT, SIGHUP};
std::array<int, 2> ends{-1, -1};

void noteSignal(int /*number*/)
{
    const char byte = 0;
    // Nothing can be done about a full pipe: then the end has been asked for already.
    [[maybe_unused]] const ssize_t written = ::write(ends[1], &byte, 1);
}

} // namespace

EndSignals::EndSignals(QObject* parent) : QObject(parent)
{
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        logLine(QStringLiteral("signals             :-("));
        return;
    }
    notifier_ = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(ends[0], &byte, 1) == 1) {
        }
        Q_EMIT received();
    });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : endSignals) {
        sigaction(number, &action, nullptr);
    }
}

EndSignals::~EndSignals()
{
    for (const int number : endSignals) {
        std::signal(number, SIG_DFL);
    }
    for (int& end : ends) {
        if (end >= 0) {
            ::close(end);
            end = -1;
        }
    }
}

} // namespace tavrix
