#include "process/childprocess.h"

#include "base/log.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <linux/close_range.h>
#include <memory>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr int killWaitMs = 500;

// Everything that the child needs between fork and exec, where no memory may be allocated.
struct Prepared {
    QByteArray program;
    QByteArray workingFolder;
    std::vector<QByteArray> texts;
    std::vector<char*> arguments;
    std::vector<char*> environment;
    QByteArray locale;
    const ChildSetup* setup = nullptr;
    pid_t parent = -1;
    int failureFd = -1;
};

bool prepare(const ChildSetup& setup, Prepared& prepared)
{
    prepared.setup = &setup;
    prepared.program = setup.program.toUtf8();
    prepared.workingFolder = setup.workingFolder.toUtf8();
    prepared.texts.push_back(setup.name.isNull() ? prepared.program : setup.name.toUtf8());
    for (const QString& argument : setup.arguments) {
        prepared.texts.push_back(argument.toUtf8());
    }
    for (QByteArray& text : prepared.texts) {
        // The system would cut the text there and run something else than what was asked for.
        if (text.contains('\0')) {
            return false;
        }
        prepared.arguments.push_back(text.data());
    }
    prepared.arguments.push_back(nullptr);
    constexpr char localeKey[] = "LC_CTYPE=";
    for (char** entry = environ; *entry != nullptr; ++entry) {
        if (!setup.toolLocale || std::strncmp(*entry, localeKey, sizeof localeKey - 1) != 0) {
            prepared.environment.push_back(*entry);
        }
    }
    if (setup.toolLocale) {
        prepared.locale = QByteArray(localeKey) + "en_US.UTF-8";
        prepared.environment.push_back(prepared.locale.data());
    }
    prepared.environment.push_back(nullptr);
    prepared.parent = getpid();
    return !prepared.program.contains('\0') && !prepared.workingFolder.contains('\0');
}

[[noreturn]] void failInChild(const Prepared& prepared)
{
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = ::write(prepared.failureFd, &reason, sizeof reason);
    _exit(ChildProcess::statusNotStarted);
}

void connectStream(const Prepared& prepared, int source, int target)
{
    if (source >= 0 && dup2(source, target) < 0) {
        failInChild(prepared);
    }
}

// Runs in the child: only async-signal-safe calls.
[[noreturn]] void runChild(Prepared& prepared)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have died before the line above took effect.
    if (getppid() != prepared.parent) {
        _exit(ChildProcess::statusNotStarted);
    }
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);

    const ChildSetup& setup = *prepared.setup;
    int input = setup.input;
    if (input < 0) {
        input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    if (input < 0) {
        failInChild(prepared);
    }
    if (input == STDIN_FILENO) {
        fcntl(input, F_SETFD, 0);
    }
    connectStream(prepared, input, STDIN_FILENO);
    connectStream(prepared, setup.output, STDOUT_FILENO);
    connectStream(prepared, setup.error, STDERR_FILENO);
    // Descriptors that some library opened without the close-on-exec flag must not stay open in a tool either.
    syscall(SYS_close_range, 3U, ~0U, CLOSE_RANGE_CLOEXEC);
    if (!prepared.workingFolder.isEmpty() && chdir(prepared.workingFolder.constData()) != 0) {
        failInChild(prepared);
    }
    execve(prepared.program.constData(), prepared.arguments.data(), prepared.environment.data());
    failInChild(prepared);
}

// Signals stay blocked across the fork so that no handler of this program runs in the child.
pid_t forkChild(Prepared& prepared)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t pid = fork();
    if (pid == 0) {
        runChild(prepared);
    }
    const int reason = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = reason;
    return pid;
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

QString systemReason(int number)
{
    return QString::fromStdString(std::generic_category().message(number));
}

// The pipe's write end closes by itself when the program has been executed.
int readFailure(int fd)
{
    int reason = 0;
    ssize_t got = -1;
    do {
        got = ::read(fd, &reason, sizeof reason);
    } while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(sizeof reason) ? reason : 0;
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

ChildProcess ChildProcess::start(const ChildSetup& setup, QString* failure)
{
    ChildProcess child;
    Prepared prepared;
    Pipe failurePipe = makePipe(PipeReader::Child);
    if (!failurePipe.isOpen()) {
        *failure = systemReason(errno);
        return child;
    }
    if (!prepare(setup, prepared)) {
        *failure = systemReason(EINVAL);
        return child;
    }
    keepExitStatuses();
    prepared.failureFd = failurePipe.writeEnd.get();
    const pid_t pid = forkChild(prepared);
    if (pid < 0) {
        *failure = systemReason(errno);
        return child;
    }
    failurePipe.writeEnd.reset();
    if (const int reason = readFailure(failurePipe.readEnd.get()); reason != 0) {
        *failure = systemReason(reason);
    }
    child.exit_ = openExitDescriptor(pid);
    if (!child.exit_.isOpen()) {
        *failure = systemReason(errno);
        kill(-pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        return child;
    }
    child.pid_ = pid;
    return child;
}

void ChildProcess::signalGroup(int signal) const
{
    if (!exists() || reaped_) {
        return;
    }
    if (kill(-pid_, signal) != 0 && errno != ESRCH) {
        logLine(QStringLiteral("signal %d to %d       :-( %@"), {signal, pid_, systemReason(errno)});
    }
}

bool ChildProcess::reapIfEnded()
{
    if (reaped_ || !exists()) {
        return true;
    }
    int raw = 0;
    pid_t got = -1;
    do {
        got = waitpid(pid_, &raw, WNOHANG);
    } while (got < 0 && errno == EINTR);
    if (got == 0) {
        return false;
    }
    reaped_ = true;
    exit_.reset();
    if (got < 0) {
        logLine(QStringLiteral("exit status of %d     :-( %@"), {pid_, systemReason(errno)});
    } else if (WIFSIGNALED(raw)) {
        status_ = WTERMSIG(raw);
    } else {
        status_ = WEXITSTATUS(raw);
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

Descriptor openExitDescriptor(pid_t pid, ExitWatch watch)
{
    if (watch == ExitWatch::Kernel) {
        const long fd = syscall(SYS_pidfd_open, pid, 0U);
        if (fd >= 0) {
            return Descriptor(static_cast<int>(fd));
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
    [[maybe_unused]] const int handedOver = made.writeEnd.release();
    return std::move(made.readEnd);
}

} // namespace tavrix
