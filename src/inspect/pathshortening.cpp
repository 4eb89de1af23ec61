// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/pathshortening.h"

#include <QRegularExpression>

namespace tavrix
{

namespace
{

bool isQuote(QChar character)
{
    return character == QLatin1Char('\'') || character == QLatin1Char('"') || character == QLatin1Char('`');
}

// A slash between letters or digits divides or joins words; behind "://" stands an address.
bool beginsPath(const QString& line, qsizetype at)
{
    const bool home = line.at(at) == QLatin1Char('~') && line.mid(at + 1, 1) == QLatin1String("/");
    if (line.at(at) != QLatin1Char('/') && !home) {
        return false;
    }
    // A slash by itself divides.
    if (at + 1 >= line.size() || line.at(at + 1) == QLatin1Char(' ')) {
        return false;
    }
    if (at == 0) {
        return true;
    }
    const QChar before = line.at(at - 1);
    const bool address = before == QLatin1Char(':') && line.mid(at, 2) == QLatin1String("//");
    return !address && !before.isLetterOrNumber() && before != QLatin1Char('/') && before != QLatin1Char('.') &&
           before != QLatin1Char('_') && before != QLatin1Char('-');
}

qsizetype pathEnd(const QString& line, qsizetype begin)
{
    const bool quoted = begin > 0 && isQuote(line.at(begin - 1));
    for (qsizetype at = begin + 1; at < line.size(); ++at) {
        const QChar character = line.at(at);
        if (quoted) {
            if (character == line.at(begin - 1)) {
                return at;
            }
            continue;
        }
        const bool listed = character == QLatin1Char(',') && line.mid(at + 1, 1) == QLatin1String(" ");
        const bool another = character == QLatin1Char(' ') && at + 1 < line.size() && beginsPath(line, at + 1);
        if (listed || another || isQuote(character)) {
            return at;
        }
    }
    return line.size();
}

} // namespace

QString shortenedPaths(const QString& logLine)
{
    // As ffmpeg prints a clip's tags: "location-eng    : +54.1843-002.7189/".
    static const QRegularExpression place(QStringLiteral("(location[\\w.-]*\\s*: )[^,]+"));
    // The listing of a folder names whatever lies beside the clips.
    static const QRegularExpression listing(QStringLiteral("(lsCocoa\\s.*\\d+ items : ).*"));
    QString line = logLine;
    line.replace(place, QStringLiteral("\\1..."));
    line.replace(listing, QStringLiteral("\\1..."));
    QString shown;
    for (qsizetype at = 0; at < line.size();) {
        if (!beginsPath(line, at)) {
            shown += line.at(at++);
            continue;
        }
        const qsizetype end = pathEnd(line, at);
        QString path = line.mid(at, end - at);
        // A closing slash says that it is a folder.
        const qsizetype last = path.lastIndexOf(QLatin1Char('/'), path.endsWith(QLatin1Char('/')) ? -2 : -1);
        if (last >= 0) {
            path = QStringLiteral("...") + path.mid(last);
        }
        shown += path;
        at = end;
    }
    return shown;
}

} // namespace tavrix
