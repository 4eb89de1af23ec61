// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/oldtools.h"

#include "base/bundle/bundle.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tavrix
{

namespace
{

QByteArray procFile(int pid, const char* name)
{
    QFile file(formatText(QStringLiteral("/proc/%d/%@"), {pid, name}));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Null when the process has no such variable.
QByteArray environmentValue(int pid, const QByteArray& name)
{
    for (const QByteArray& entry : procFile(pid, "environ").split('\0')) {
        if (entry.startsWith(name + '=')) {
            return entry.mid(name.size() + 1);
        }
    }
    return {};
}

bool hasSameHome(int pid)
{
    return environmentValue(pid, "HOME") == nativePath(homeFolder());
}

// Started by a run of the program that is no more. Whoever runs a tool by hand gives it no such variable.
bool isOrphan(int pid)
{
    const int program = environmentValue(pid, ownerVariable).toInt();
    return program > 0 && (::kill(program, 0) != 0 && errno == ESRCH);
}

// The tool itself, or the installed ffmpeg that bears the tool's path as its first argument.
bool runsTool(int pid, const QString& path)
{
    const QByteArray wanted = nativePath(path);
    const QString program = QFileInfo(formatText(QStringLiteral("/proc/%d/exe"), {pid})).symLinkTarget();
    return nativePath(program) == wanted || procFile(pid, "cmdline").split('\0').value(0) == wanted;
}

bool isOwn(int pid)
{
    struct stat info = {};
    const QByteArray folder = nativePath(formatText(QStringLiteral("/proc/%d"), {pid}));
    return ::stat(folder.constData(), &info) == 0 && info.st_uid == ::geteuid();
}

QList<int> runningProcesses()
{
    QList<int> pids;
    const QStringList names =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString& name : names) {
        bool number = false;
        const int pid = name.toInt(&number);
        if (number && pid > 0) {
            pids << pid;
        }
    }
    return pids;
}

// Whether the command of `leftOverToolCommand` shows the process: by a line that holds the path, and none of grep's.
bool isListed(int pid, const QString& path)
{
    const QByteArray line = procFile(pid, "cmdline").replace('\0', ' ');
    return line.contains(nativePath(path)) && !line.contains("grep");
}

} // namespace

QString leftOverToolCommand(const QString& toolsFolder, const QString& tool)
{
    for (const QChar character : {QLatin1Char('"'), QLatin1Char('$'), QLatin1Char('\\'), QLatin1Char('`')}) {
        if (toolsFolder.contains(character)) {
            return {};
        }
    }
    const QString path = formatText(QStringLiteral("\"%@\"/%@"), {toolsFolder, tool});
    return formatText(QStringLiteral("/bin/ps -awwx | /usr/bin/strings | /usr/bin/grep %@ | /usr/bin/grep -v grep | "
                                     "/usr/bin/awk '{print $1}'"),
                      {path});
}

// The shell's listing takes six programs and longer than all the rest of the start; what it shows is in /proc.
QList<int> leftOverToolPids(const QString& tool)
{
    const QString folder = toolsFolder();
    if (leftOverToolCommand(folder, tool).isNull()) {
        logLine(QStringLiteral("vieux process       :-( %@"), {folder});
        return {};
    }
    QList<int> pids;
    const QString path = toolPath(tool);
    for (const int pid : runningProcesses()) {
        // The listing also shows processes that merely have the path among their arguments.
        if (pid != ::getpid() && pid != ::getppid() && isOwn(pid) && isListed(pid, path) && hasSameHome(pid) &&
            isOrphan(pid) && runsTool(pid, path)) {
            pids << pid;
        }
    }
    return pids;
}

void killLeftOverTool(int pid)
{
    if (::kill(pid, SIGKILL) != 0 && errno != ESRCH) {
        logLine(QStringLiteral("vieux process       :-( %d - %@"), {pid, std::strerror(errno)});
    }
}

} // namespace tavrix
