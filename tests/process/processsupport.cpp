// SPDX-License-Identifier: GPL-3.0-or-later
#include "processsupport.h"

#include "support/waituntil.h"
#include "testpaths.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix::test
{

QString fakeChild()
{
    return QStringLiteral(TAVRIX_BUILD_BIN "/fakechild");
}

QStringList fake(const QStringList& actions)
{
    return QStringList(fakeChild()) + actions;
}

int openDescriptors()
{
    return static_cast<int>(
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size());
}

bool hasChildren()
{
    siginfo_t info = {};
    return !(waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD);
}

char processState(pid_t pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray line = file.readAll();
    const qsizetype at = line.lastIndexOf(')') + 2;
    return at < line.size() ? line[at] : '\0';
}

bool isGone(pid_t pid)
{
    const char state = processState(pid);
    return state == 0 || state == 'Z' || state == 'X';
}

pid_t pidInFile(const QString& path)
{
    const std::optional<QByteArray> bytes = readBytes(path);
    return bytes ? bytes->toInt() : 0;
}

pid_t waitForPid(const QString& path)
{
    return waitUntil([&] { return pidInFile(path) > 0; }) ? pidInFile(path) : 0;
}

bool makeFifo(const QString& path)
{
    return mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
}

bool releaseFifo(const QString& path)
{
    const int fd = open(QFile::encodeName(path).constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    close(fd);
    return true;
}

void Recorder::taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& chunk)
{
    events << QStringLiteral("string:") + chunk;
    text += chunk;
    ++chunks;
    if (onOutput) {
        onOutput(launcher);
    }
}

void Recorder::taskLauncherDidReceiveNewData(taskLauncher* launcher, const QByteArray& chunk)
{
    events << QStringLiteral("data:") + QString::fromLatin1(chunk);
    data += chunk;
    ++chunks;
    if (onOutput) {
        onOutput(launcher);
    }
}

void Recorder::taskLauncherTaskDidEnd(taskLauncher* launcher)
{
    events << QStringLiteral("end:%1").arg(launcher->terminationStatus());
    ++ends;
    if (onEnd) {
        onEnd(launcher);
    }
}

void Recorder::taskLauncherTaskDidSuspend(taskLauncher* /*launcher*/)
{
    events << QStringLiteral("suspend");
}

void Recorder::taskLauncherTaskDidResume(taskLauncher* launcher)
{
    events << QStringLiteral("resume");
    if (onResume) {
        onResume(launcher);
    }
}

} // namespace tavrix::test
