#include "tools/common/childprocess.h"

#include "sys/descriptor.h"
#include "sys/errortext.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
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

// Keeps signal handlers out while `runningChild` changes together with the child itself.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalBlock() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t before_ = {};
};

struct ChildImage {
    std::vector<char*> arguments;
    std::vector<std::string> variables;
    std::vector<char*> environment;
};

bool isNamed(std::string_view variable, std::string_view name)
{
    return variable.starts_with(name) && variable.size() > name.size() && variable[name.size()] == '=';
}

bool isReplaced(std::string_view variable, const ChildRequest& request)
{
    for (const auto& [name, value] : request.environment) {
        if (isNamed(variable, name)) {
            return true;
        }
    }
    for (const std::string& name : request.removedVariables) {
        if (isNamed(variable, name)) {
            return true;
        }
    }
    return false;
}

// Everything is laid out before the fork: the child must not allocate.
ChildImage imageOf(const ChildRequest& request)
{
    ChildImage image;
    for (const std::string& argument : request.arguments) {
        image.arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    image.arguments.push_back(nullptr);
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (!isReplaced(*variable, request)) {
            image.variables.emplace_back(*variable);
        }
    }
    for (const auto& [name, value] : request.environment) {
        image.variables.emplace_back(name).append("=").append(value);
    }
    for (const std::string& variable : image.variables) {
        image.environment.push_back(const_cast<char*>(variable.c_str()));
    }
    image.environment.push_back(nullptr);
    return image;
}

[[noreturn]] void becomeChild(const ChildRequest& request, const ChildImage& image, pid_t parent, int errorStream,
                              int report)
{
    const auto fail = [report]() {
        const int reason = errno;
        [[maybe_unused]] const ssize_t told = write(report, &reason, sizeof reason);
        _exit(127);
    };
    // Handlers end with this program; what is ignored would stay so.
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // The parent may already be gone; then nobody is left to send the signal.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) {
        fail();
    }
    if (dup2(errorStream, STDERR_FILENO) < 0) {
        fail();
    }
    if (!request.readsStandardInput) {
        const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (null < 0 || (null != STDIN_FILENO && dup2(null, STDIN_FILENO) < 0) ||
            (null == STDIN_FILENO && fcntl(null, F_SETFD, 0) != 0)) {
            fail();
        }
    }
    for (const int fd : request.inheritedDescriptors) {
        if (fcntl(fd, F_SETFD, 0) != 0) {
            fail();
        }
    }
    execve(request.program.c_str(), image.arguments.data(), image.environment.data());
    fail();
    _exit(127);
}

// Reads what is there. False at the end of the stream, or when nothing more is to come from a stream that does not
// block.
bool readPiece(int fd, const std::function<void(std::string_view)>& receiver)
{
    std::array<char, 65536> buffer; // filled by read before it is looked at
    const ssize_t count = read(fd, buffer.data(), buffer.size());
    if (count > 0) {
        receiver({buffer.data(), static_cast<std::size_t>(count)});
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

Descriptor openProcess(pid_t child)
{
    return aboveStandardStreams(Descriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0U))));
}

// The stream ends with the child; another process that has inherited it does not hold up the end.
void drain(int stream, pid_t child, const std::function<void(std::string_view)>& receiver)
{
    const Descriptor process = openProcess(child);
    std::array<pollfd, 2> watched = {pollfd{stream, POLLIN, 0}, pollfd{process.get(), POLLIN, 0}};
    while (true) {
        if (poll(watched.data(), process.get() >= 0 ? 2 : 1, -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        if (watched[0].revents != 0) {
            if (!readPiece(stream, receiver)) {
                return;
            }
        } else if (watched[1].revents != 0) {
            break;
        }
    }
    fcntl(stream, F_SETFL, O_NONBLOCK);
    while (readPiece(stream, receiver)) {
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
    int status = 0;
    pid_t reaped = -1;
    while ((reaped = waitpid(child, &status, 0)) < 0 && errno == EINTR) {
    }
    // An end that nobody can tell of is no good one.
    if (reaped != child) {
        return {true, SIGKILL};
    }
    if (WIFSIGNALED(status)) {
        return {true, WTERMSIG(status)};
    }
    return {false, WEXITSTATUS(status)};
}

} // namespace

std::optional<ChildEnd> runChild(const ChildRequest& request, const std::function<void(std::string_view)>& receiver,
                                 std::string& error)
{
    Pipe stream = makePipe(PipeReader::Child);
    Pipe report = makePipe(PipeReader::Child);
    if (!stream.isOpen() || !report.isOpen()) {
        error = errorText(errno);
        return std::nullopt;
    }
    const ChildImage image = imageOf(request);
    // Where the caller ignores this signal, the system would drop the child's status.
    std::signal(SIGCHLD, SIG_DFL);
    const pid_t parent = getpid();
    pid_t child = -1;
    {
        const SignalBlock block;
        child = caughtSignal == 0 ? fork() : -1;
        if (child == 0) {
            becomeChild(request, image, parent, stream.writeEnd.get(), report.writeEnd.get());
        }
        if (child < 0) {
            error = errorText(caughtSignal == 0 ? errno : EINTR);
            return std::nullopt;
        }
        runningChild = child;
    }
    stream.writeEnd.reset();
    report.writeEnd.reset();
    int reason = 0;
    ssize_t told = -1;
    while ((told = read(report.readEnd.get(), &reason, sizeof reason)) < 0 && errno == EINTR) {
    }
    drain(stream.readEnd.get(), child, receiver);
    const ChildEnd end = reap(child);
    if (told == static_cast<ssize_t>(sizeof reason)) {
        error = errorText(reason);
        return std::nullopt;
    }
    return end;
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
