// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/childprocess.h"

#include "sys/descriptor.h"
#include "sys/errortext.h"
#include "sys/signalblock.h"
#include "sys/transfer.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// Written by signal handlers: only a process that is not reaped yet may be signalled.
volatile std::sig_atomic_t runningChild = 0;
volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void onEndingSignal(int signal)
{
    caughtSignal = signal;
    if (runningChild > 0) {
        kill(static_cast<pid_t>(runningChild), SIGKILL);
    }
}

// The stream ends with the child; another process that has inherited it does not hold up the end.
void drain(int stream, pid_t child, const std::function<void(std::string_view)>& receiver)
{
    const Descriptor ended = openExitDescriptor(child);
    std::array<pollfd, 2> watched = {pollfd{stream, POLLIN, 0}, pollfd{ended.get(), POLLIN, 0}};
    std::string chunk;
    while (poll(watched.data(), ended.isOpen() ? 2 : 1, -1) >= 0 || errno == EINTR) {
        if (watched[0].revents == 0 && watched[1].revents != 0) {
            break;
        }
        const ReadState state = readChunk(stream, chunk);
        if (state == ReadState::End) {
            return;
        }
        receiver(chunk);
    }
    while (readChunk(stream, chunk) == ReadState::Data) {
        receiver(chunk);
    }
}

ChildEnd reap(pid_t child)
{
    siginfo_t info = {};
    // Look without reaping first: the handlers may use the number until they are kept out.
    while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const SignalBlock block;
    runningChild = 0;
    const Result<std::optional<ChildEnd>> end = reapIfEnded(child);
    // An end that nobody can tell of is no good one.
    return end ? end->value_or(ChildEnd{true, SIGKILL}) : ChildEnd{true, SIGKILL};
}

// The handlers are kept out until they can know the child.
Result<pid_t> start(const SpawnRequest& request)
{
    const SignalBlock block;
    if (caughtSignal != 0) {
        return Failure{errorText(EINTR)};
    }
    Result<pid_t> child = spawn(request);
    if (child) {
        runningChild = *child;
    }
    return child;
}

} // namespace

Result<ChildEnd> runChild(SpawnRequest request, const std::function<void(std::string_view)>& receiver)
{
    Pipe stream = makePipe(PipeReader::Parent);
    if (!stream.isOpen()) {
        return Failure{errorText(errno)};
    }
    request.error = stream.writeEnd.get();
    const Result<pid_t> child = start(request);
    if (!child) {
        return Failure{child.reason()};
    }
    stream.writeEnd.reset();
    drain(stream.readEnd.get(), *child, receiver);
    return reap(*child);
}

void killChild()
{
    const SignalBlock block;
    if (runningChild > 0) {
        kill(static_cast<pid_t>(runningChild), SIGKILL);
    }
}

int interruptingSignal()
{
    return caughtSignal;
}

void watchForInterruption()
{
    struct sigaction action = {};
    action.sa_handler = onEndingSignal;
    sigfillset(&action.sa_mask);
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : endingSignals) {
        struct sigaction before = {};
        // A signal that the parent had ignored, as nohup does, stays ignored.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
        sigaddset(&ending, signal);
    }
    // A caller that takes its own signals from a queue leaves them blocked here.
    sigprocmask(SIG_UNBLOCK, &ending, nullptr);
}

void endBySignal(int signal)
{
    std::signal(signal, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    sigprocmask(SIG_UNBLOCK, &only, nullptr);
    raise(signal);
    std::_Exit(128 + signal);
}

} // namespace tavrix
