// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/childend.h"

#include "sys/errortext.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace tavrix
{

namespace
{

using Clock = std::chrono::steady_clock;

// False when the time is over first.
bool waitUntilReadable(const Descriptor& descriptor, Clock::time_point deadline)
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd watched = {descriptor.get(), POLLIN, 0};
        const int ready = poll(&watched, 1, static_cast<int>(std::clamp<long long>(left, 0, INT_MAX)));
        if (ready > 0 || (ready == 0 && left <= INT_MAX) || (ready < 0 && errno != EINTR)) {
            return ready > 0;
        }
    }
}

void killGroup(pid_t pid)
{
    kill(-pid, SIGKILL);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

std::string endText(const ChildEnd& end)
{
    const std::string number = std::to_string(end.code);
    if (!end.bySignal) {
        return "ended with status " + number;
    }
    const char* const name = strsignal(end.code);
    return "ended by signal " + number + (name == nullptr ? "" : " (" + std::string(name) + ')');
}

Descriptor openExitDescriptor(pid_t pid, ExitWatch watch)
{
    if (watch == ExitWatch::Kernel) {
        const long fd = syscall(SYS_pidfd_open, pid, 0U);
        if (fd >= 0) {
            return aboveStandardStreams(Descriptor(static_cast<int>(fd)));
        }
    }
    Pipe made = makePipe(PipeReader::Child);
    if (!made.isOpen()) {
        return {};
    }
    const int writeEnd = made.writeEnd.get();
    try {
        std::thread([pid, writeEnd] {
            siginfo_t info = {};
            while (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
            }
            ::close(writeEnd);
        }).detach();
    } catch (const std::system_error&) {
        errno = EAGAIN;
        return {};
    }
    static_cast<void>(made.writeEnd.release()); // the thread's
    return std::move(made.readEnd);
}

Result<std::optional<ChildEnd>> reapIfEnded(pid_t pid)
{
    int status = 0;
    pid_t reaped = -1;
    do {
        reaped = waitpid(pid, &status, WNOHANG);
    } while (reaped < 0 && errno == EINTR);
    if (reaped < 0) {
        return Failure{errorText(errno)};
    }
    if (reaped == 0) {
        return std::optional<ChildEnd>();
    }
    return std::optional(WIFSIGNALED(status) ? ChildEnd{true, WTERMSIG(status)} : ChildEnd{false, WEXITSTATUS(status)});
}

Result<ChildEnd> runToEnd(SpawnRequest request, std::chrono::milliseconds limit)
{
    request.ownGroup = true;
    const Result<pid_t> child = spawn(request);
    if (!child) {
        return Failure{child.reason()};
    }
    const Descriptor ended = openExitDescriptor(*child);
    if (!ended.isOpen()) {
        const std::string reason = errorText(errno);
        killGroup(*child);
        return Failure{reason};
    }
    if (!waitUntilReadable(ended, Clock::now() + limit)) {
        killGroup(*child);
        return Failure{"not ended after " + std::to_string(limit.count()) + " ms"};
    }
    const Result<std::optional<ChildEnd>> end = reapIfEnded(*child);
    if (!end) {
        return Failure{end.reason()};
    }
    return end->value_or(ChildEnd{true, SIGKILL});
}

} // namespace tavrix
