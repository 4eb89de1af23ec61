#include "app/encodefailure.h"

#include "base/conversions.h"

#include <QStringList>

namespace tavrix
{

namespace
{

bool isOrdinaryLine(const QString& line)
{
    static const QStringList beginnings = {
        QStringLiteral("frame="),    QStringLiteral("size="),        QStringLiteral("video:"),
        QStringLiteral("Stream "),   QStringLiteral("Input #"),      QStringLiteral("Output #"),
        QStringLiteral("Press [q]"), QStringLiteral("Metadata"),     QStringLiteral("Duration"),
        QStringLiteral("Program "),  QStringLiteral("Processing ("), QStringLiteral("FFmpeg version"),
        QStringLiteral("tavrix-"),   QStringLiteral("built on"),     QStringLiteral("configuration"),
        QStringLiteral("lib"),
    };
    for (const QString& beginning : beginnings) {
        if (line.startsWith(beginning)) {
            return true;
        }
    }
    return false;
}

} // namespace

QString failureLine(const QString& transcript)
{
    const QStringList lines = linesToArray(transcript);
    for (auto it = lines.crbegin(); it != lines.crend(); ++it) {
        QString line = it->trimmed();
        // Indented "key : value" lines describe streams; messages of the tool start at the margin.
        if (!line.isEmpty() && !it->startsWith(QLatin1Char(' ')) && !isOrdinaryLine(line)) {
            return line;
        }
    }
    return {};
}

} // namespace tavrix
