// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/processinfo.h"

#include <QFile>

namespace tavrix
{

namespace
{

// Fields of /proc/<pid>/stat behind the name, which may itself hold blanks and parentheses.
QList<QByteArray> statFields(int pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (pid <= 0 || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

constexpr qsizetype stateField = 0;
constexpr qsizetype startTimeField = 19;

} // namespace

ProcessIdentity processIdentity(int pid)
{
    const QList<QByteArray> fields = statFields(pid);
    if (fields.size() <= startTimeField) {
        return {pid, 0};
    }
    return {pid, fields[startTimeField].toULongLong()};
}

bool isRunningAs(const ProcessIdentity& identity)
{
    const QList<QByteArray> fields = statFields(identity.pid);
    if (fields.size() <= startTimeField || identity.startTime == 0) {
        return false;
    }
    const QByteArray& state = fields[stateField];
    return state != "Z" && state != "X" && fields[startTimeField].toULongLong() == identity.startTime;
}

} // namespace tavrix
