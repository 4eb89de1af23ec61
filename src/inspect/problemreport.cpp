// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/problemreport.h"

#include "base/bundle/bundle.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "inspect/pathshortening.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace tavrix
{

namespace
{

constexpr qint64 mostLogBytes = qint64{1} << 20U;

ReportLog logNamed(const char* name, int lines)
{
    const QString path = stringByAppendingPathComponent(logsFolder(), QLatin1String(name));
    return {QLatin1String(name), lastLines(path, lines)};
}

} // namespace

QStringList lastLines(const QString& path, int count)
{
    QFile file(path);
    if (count <= 0 || !QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const qint64 begin = std::max<qint64>(0, file.size() - mostLogBytes);
    if (!file.seek(begin)) {
        return {};
    }
    QStringList lines = QString::fromUtf8(file.read(mostLogBytes)).split(QLatin1Char('\n'));
    if (begin > 0) {
        lines.removeFirst();
    }
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines.mid(std::max<qsizetype>(0, lines.size() - count));
}

QString reportText(const QList<SystemFact>& facts, const QList<ReportLog>& logs, bool fullPaths)
{
    qsizetype widest = 0;
    for (const SystemFact& fact : facts) {
        widest = std::max(widest, fact.label.size());
    }
    QString text;
    for (const SystemFact& fact : facts) {
        text += fact.label.leftJustified(widest) + QStringLiteral(" : ") + shownText(fact.value) + QLatin1Char('\n');
    }
    for (const ReportLog& log : logs) {
        text += QStringLiteral("\n---- ") + log.heading + QStringLiteral(" ----\n");
        for (const QString& line : log.lines) {
            text += shownText(fullPaths ? line : shortenedPaths(line)) + QLatin1Char('\n');
        }
    }
    return text;
}

QString problemReport(const ReportWish& wish)
{
    QList<ReportLog> logs;
    if (wish.logLines > 0) {
        logs = {logNamed("Resume.log", wish.logLines), logNamed("Details.log", wish.logLines)};
    }
    return reportText(systemFacts(), logs, wish.fullPaths);
}

} // namespace tavrix
