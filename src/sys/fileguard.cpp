// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/fileguard.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

// Nobody may wait in vain for the end of a stream that the guard has inherited, the guard itself included.
bool closeAllBut(int one, int other)
{
    const auto low = static_cast<unsigned>(std::min(one, other));
    const auto high = static_cast<unsigned>(std::max(one, other));
    return (low == 0 || close_range(0, low - 1, 0) == 0) &&
           (high <= low + 1 || close_range(low + 1, high - 1, 0) == 0) && close_range(high + 1, UINT_MAX, 0) == 0;
}

// Only calls that are allowed between fork and exec.
[[noreturn]] void standGuard(int reading, int folderFd, const char* name)
{
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    if (!closeAllBut(reading, folderFd)) {
        _exit(1);
    }
    char nothing = 0;
    while (read(reading, &nothing, 1) < 0 && errno == EINTR) {
    }
    unlinkat(folderFd, name, 0);
    _exit(0);
}

} // namespace

Descriptor guardFile(int folderFd, const std::string& name)
{
    Pipe pipe = makePipe(PipeReader::Child);
    if (!pipe.isOpen()) {
        return {};
    }
    const pid_t starter = fork();
    if (starter == 0) {
        // The guard is nobody's child, so that nobody has to reap it.
        const pid_t guard = setsid() < 0 ? -1 : fork();
        if (guard == 0) {
            standGuard(pipe.readEnd.get(), folderFd, name.c_str());
        }
        _exit(guard < 0 ? 1 : 0);
    }
    int status = 0;
    while (starter > 0 && waitpid(starter, &status, 0) < 0 && errno == EINTR) {
    }
    return starter > 0 && status == 0 ? std::move(pipe.writeEnd) : Descriptor();
}

} // namespace tavrix
