// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/log.h"

#include "base/text/shownname.h"
#include "sys/transfer.h"

#include <QDateTime>

#include <cerrno>
#include <unistd.h>

namespace tavrix
{

namespace
{

struct LogState {
    std::function<void(const QString&)> sink;
    QString name = QStringLiteral("Tavrix");
    bool debug = false;
    bool dev = false;
};

LogState& state()
{
    static LogState instance;
    return instance;
}

// A file name must not be able to forge a line of its own, nor to tell a terminal what to do.
QList<FormatArg> onOneLine(std::initializer_list<FormatArg> arguments)
{
    QList<FormatArg> safe;
    safe.reserve(static_cast<qsizetype>(arguments.size()));
    for (const FormatArg& argument : arguments) {
        const QString text = argument.asText();
        const QString shown = shownText(text);
        safe.append(shown == text ? argument : FormatArg(shown));
    }
    return safe;
}

void writeLine(const QString& format, std::initializer_list<FormatArg> arguments)
{
    const int savedErrno = errno;
    const QString text = formatText(format, onOneLine(arguments));
    const QString date = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    const QString line = date + u' ' + state().name + u'[' + QString::number(getpid()) + QStringLiteral("] ") + text;
    // One write keeps lines of several processes on one file whole. There is no other place to complain.
    static_cast<void>(writeAll(STDERR_FILENO, (line + u'\n').toStdString()));
    if (state().sink) {
        // The sink may replace itself while it runs.
        const std::function<void(const QString&)> sink = state().sink;
        sink(text);
    }
    errno = savedErrno;
}

} // namespace

void logLine(const QString& format, std::initializer_list<FormatArg> arguments)
{
    writeLine(format, arguments);
}

void logDebug(const QString& format, std::initializer_list<FormatArg> arguments)
{
    if (state().debug) {
        writeLine(format, arguments);
    }
}

void logDev(const QString& format, std::initializer_list<FormatArg> arguments)
{
    if (state().dev) {
        writeLine(format, arguments);
    }
}

void setLogSink(std::function<void(const QString&)> sink)
{
    state().sink = std::move(sink);
}

void setDebugLogged(bool on)
{
    state().debug = on;
}

void setDevLogged(bool on)
{
    state().dev = on;
}

void setLogName(const QString& name)
{
    state().name = name;
}

} // namespace tavrix
