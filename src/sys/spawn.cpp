// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/spawn.h"

#include "sys/descriptor.h"
#include "sys/errortext.h"
#include "sys/signalblock.h"
#include "sys/transfer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <linux/close_range.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr int statusNotStarted = 127;

// Everything that the child needs between fork and exec, where no memory may be allocated.
struct Image {
    const SpawnRequest* request = nullptr;
    std::vector<char*> arguments;
    std::vector<std::string> variables;
    std::vector<char*> environment;
    pid_t parent = -1;
    int descriptorLimit = 0;
    int report = -1;
};

bool isNamed(std::string_view variable, std::string_view name)
{
    return variable.starts_with(name) && variable.size() > name.size() && variable[name.size()] == '=';
}

bool isReplaced(std::string_view variable, const SpawnRequest& request)
{
    return std::ranges::any_of(request.environment,
                               [&](const auto& entry) { return isNamed(variable, entry.first); }) ||
           std::ranges::any_of(request.removedVariables, [&](const auto& name) { return isNamed(variable, name); });
}

// The system would cut a text at a NUL and run something else than what was asked for.
bool canBeSaid(const SpawnRequest& request)
{
    const auto isWhole = [](const std::string& text) {
        return text.find('\0') == std::string::npos;
    };
    return isWhole(request.program) && isWhole(request.workingFolder) &&
           std::ranges::all_of(request.arguments, isWhole) &&
           std::ranges::all_of(request.environment,
                               [&](const auto& entry) { return isWhole(entry.first) && isWhole(entry.second); });
}

std::vector<char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

int openDescriptorLimit()
{
    constexpr rlim_t enough = 65536;
    rlimit limit = {};
    return static_cast<int>(getrlimit(RLIMIT_NOFILE, &limit) == 0 ? std::min(limit.rlim_cur, enough) : enough);
}

Image imageOf(const SpawnRequest& request, int report)
{
    Image image;
    image.request = &request;
    image.arguments = pointersTo(request.arguments);
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (!isReplaced(*variable, request)) {
            image.variables.emplace_back(*variable);
        }
    }
    for (const auto& [name, value] : request.environment) {
        image.variables.emplace_back(name).append("=").append(value);
    }
    image.environment = pointersTo(image.variables);
    image.parent = getpid();
    image.descriptorLimit = openDescriptorLimit();
    image.report = report;
    return image;
}

[[noreturn]] void fail(const Image& image)
{
    const int reason = errno;
    [[maybe_unused]] const ssize_t told = ::write(image.report, &reason, sizeof reason);
    _exit(statusNotStarted);
}

void resetSignals()
{
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void connect(const Image& image, int source, int stream)
{
    if (source == SpawnRequest::inherited) {
        return;
    }
    if (source == stream ? fcntl(stream, F_SETFD, 0) != 0 : dup2(source, stream) < 0) {
        fail(image);
    }
}

void connectStreams(const Image& image)
{
    int input = image.request->input;
    if (input == SpawnRequest::nullDevice) {
        input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (input < 0) {
            fail(image);
        }
    }
    connect(image, input, STDIN_FILENO);
    connect(image, image.request->output, STDOUT_FILENO);
    connect(image, image.request->error, STDERR_FILENO);
}

// Descriptors that some library has opened without the close-on-exec flag must not stay open in a child either.
void closeOtherDescriptors(const Image& image)
{
    constexpr int first = STDERR_FILENO + 1;
    if (syscall(SYS_close_range, static_cast<unsigned>(first), ~0U, CLOSE_RANGE_CLOEXEC) != 0) {
        for (int fd = first; fd < image.descriptorLimit; ++fd) {
            fcntl(fd, F_SETFD, FD_CLOEXEC);
        }
    }
    for (const int fd : image.request->inheritedDescriptors) {
        if (fcntl(fd, F_SETFD, 0) != 0) {
            fail(image);
        }
    }
}

// Runs in the child: only async-signal-safe calls.
[[noreturn]] void becomeProgram(const Image& image)
{
    const SpawnRequest& request = *image.request;
    // The parent may have died before the system was asked; then nobody is left to send the signal.
    if ((request.ownGroup && setpgid(0, 0) != 0) || prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 ||
        getppid() != image.parent) {
        fail(image);
    }
    resetSignals();
    connectStreams(image);
    closeOtherDescriptors(image);
    if (!request.workingFolder.empty() && chdir(request.workingFolder.c_str()) != 0) {
        fail(image);
    }
    execve(request.program.c_str(), image.arguments.data(), image.environment.data());
    fail(image);
}

// Runs in the copy.
[[noreturn]] void doWork(const std::function<int()>& work, pid_t parent)
{
    if (setpgid(0, 0) != 0 || prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) {
        _exit(statusNotStarted);
    }
    resetSignals();
    try {
        _exit(work());
    } catch (...) {
        _exit(statusNotStarted);
    }
}

// With an ignored SIGCHLD, which a parent may hand down, the system would throw every exit status away.
void keepExitStatuses()
{
    struct sigaction action = {};
    if (sigaction(SIGCHLD, nullptr, &action) != 0) {
        return;
    }
    const bool ignored = (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN;
    if (ignored || (action.sa_flags & SA_NOCLDWAIT) != 0) {
        action.sa_flags &= ~SA_NOCLDWAIT;
        if (ignored) {
            action.sa_handler = SIG_DFL;
        }
        sigaction(SIGCHLD, &action, nullptr);
    }
}

// Signals stay blocked across the fork so that no handler of this program runs in the child.
pid_t forkProgram(const Image& image)
{
    const SignalBlock block;
    const pid_t pid = fork();
    if (pid == 0) {
        becomeProgram(image);
    }
    return pid;
}

} // namespace

Result<pid_t> spawn(const SpawnRequest& request)
{
    if (!canBeSaid(request)) {
        return Failure{errorText(EINVAL)};
    }
    Pipe report = makePipe(PipeReader::Child);
    if (!report.isOpen()) {
        return Failure{errorText(errno)};
    }
    const Image image = imageOf(request, report.writeEnd.get());
    keepExitStatuses();
    const pid_t pid = forkProgram(image);
    if (pid < 0) {
        return Failure{errorText(errno)};
    }
    // The child's end closes by itself when the program has been executed.
    report.writeEnd.reset();
    int reason = 0;
    if (readSome(report.readEnd.get(), &reason, sizeof reason) != static_cast<ssize_t>(sizeof reason)) {
        return pid;
    }
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    return Failure{errorText(reason)};
}

Result<pid_t> spawnCopy(const std::function<int()>& work)
{
    keepExitStatuses();
    const pid_t parent = getpid();
    const SignalBlock block;
    const pid_t pid = fork();
    if (pid == 0) {
        doWork(work, parent);
    }
    if (pid < 0) {
        return Failure{errorText(errno)};
    }
    // Whoever signals the group must find it, however late the copy runs first.
    setpgid(pid, pid);
    return pid;
}

} // namespace tavrix
