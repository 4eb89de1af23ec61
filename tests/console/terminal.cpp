// SPDX-License-Identifier: GPL-3.0-or-later
#include "terminal.h"
#include "testpaths.h"

#include <QDeadlineTimer>
#include <QFile>

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

namespace tavrix::test
{

namespace
{

constexpr int patienceMilliseconds = 120000;

// C strings of the list, valid as long as the list lives.
std::vector<char*> pointers(QByteArrayList& words)
{
    std::vector<char*> result;
    for (QByteArray& word : words) {
        result.push_back(word.data());
    }
    result.push_back(nullptr);
    return result;
}

} // namespace

Terminal::Terminal(int columns) : columns_(columns)
{
    const QString temporary = home_.makeFolder(QStringLiteral("tmp"));
    QFile::setPermissions(temporary, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

Terminal::~Terminal()
{
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        (void)finish();
    }
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool Terminal::start(const QStringList& arguments)
{
    const QString program = QStringLiteral(TAVRIX_BUILD_BIN "/tavrix-batch");
    QByteArrayList words = {program.toUtf8()};
    for (const QString& argument : arguments) {
        words << argument.toUtf8();
    }
    QByteArrayList environment = {"PATH=" + qgetenv("PATH"),
                                  "LANG=C.UTF-8",
                                  "TERM=xterm",
                                  "HOME=" + home_.path().toUtf8(),
                                  "TMPDIR=" + home_.path().toUtf8() + "/tmp",
                                  "XDG_DATA_HOME=" + home_.path().toUtf8() + "/data"};
    const std::vector<char*> argumentPointers = pointers(words);
    const std::vector<char*> environmentPointers = pointers(environment);
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    bytes_.clear();
    found_ = 0;
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns_);
    size.ws_row = 24;
    pid_ = ::forkpty(&descriptor_, nullptr, nullptr, &size);
    if (pid_ == 0) {
        ::execve(argumentPointers.front(), argumentPointers.data(), environmentPointers.data());
        ::_exit(127);
    }
    return pid_ > 0;
}

// A terminal whose last user has gone reports an input error.
bool Terminal::readMore()
{
    pollfd input = {descriptor_, POLLIN, 0};
    const QDeadlineTimer deadline(patienceMilliseconds);
    int ready = -1;
    do {
        ready = ::poll(&input, 1, static_cast<int>(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    std::array<char, 4096> buffer = {};
    const ssize_t length = ready > 0 ? ::read(descriptor_, buffer.data(), buffer.size()) : 0;
    if (length <= 0) {
        return false;
    }
    bytes_.append(buffer.data(), length);
    return true;
}

bool Terminal::readUntil(const QRegularExpression& expected)
{
    while (true) {
        const QRegularExpressionMatch match = expected.match(shown(), found_);
        if (match.hasMatch()) {
            found_ = match.capturedEnd();
            return true;
        }
        if (!readMore()) {
            return false;
        }
    }
}

void Terminal::type(const char* keys) const
{
    const auto length = static_cast<ssize_t>(std::strlen(keys));
    if (::write(descriptor_, keys, static_cast<std::size_t>(length)) != length) {
        std::perror("the terminal takes no keys");
    }
}

int Terminal::finish()
{
    while (readMore()) {
    }
    int status = -1;
    const pid_t ended = ::waitpid(pid_, &status, 0);
    pid_ = -1;
    return ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace tavrix::test
