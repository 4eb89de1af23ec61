// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/encodefailure.h"

#include "base/text/format.h"
#include "base/text/listconversions.h"
#include "base/text/paths.h"
#include "probe/batchtexts.h"

#include <QStringList>

#include <algorithm>
#include <array>

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

// Where in a line a phrase counts.
enum class Place {
    Anywhere,
    AtStart, // a name in another line may hold the same words
    OfAPath, // in a line that consists of a path and these words
};

struct Cause {
    const char* phrase; // of the system or a tool
    const char* key;
    bool ofMachine; // no clip can be read or written while it lasts
    Place place = Place::Anywhere;
};

constexpr std::array<Cause, 25> causes = {{
    // How a tool has ended, before what it has said until then.
    {"ffmpeg: ended by signal 9 ", "Why_killed", true, Place::AtStart},
    {"ffmpeg: ended by signal 25 ", "Why_fileTooLarge", true, Place::AtStart},
    {"ffmpeg: ended ", "Why_ffmpegEnded", true, Place::AtStart},
    {"movencoder: ended by signal 9 ", "Why_killed", false, Place::AtStart},
    {"movencoder: ended ", "Why_toolEnded", false, Place::AtStart},
    {"No space left on device", "Why_diskFull", false},
    {"Disk quota exceeded", "Why_quota", false},
    {"Read-only file system", "Why_readOnly", false},
    {"File too large", "Why_fileTooLarge", false},
    {"File name too long", "Why_nameTooLong", false},
    {"Too many open files", "Why_openFiles", true},
    {"Cannot allocate memory", "Why_memory", true},
    {"Out of memory", "Why_memory", true},
    {"Resource temporarily unavailable", "Why_processes", true},
    {"no installed ffmpeg was found", "Why_noFfmpeg", true},
    {"error while loading shared libraries", "Why_libraries", true},
    {"Exec format error", "Why_notExecutable", true},
    {"Stale file handle", "Why_diskGone", false},
    {"No such device", "Why_diskGone", false},
    {"Transport endpoint is not connected", "Why_diskGone", false},
    {"Input/output error", "Why_diskError", false},
    {"I/O error occured", "Why_diskError", false},
    {"Permission denied", "Why_denied", false},
    {"Operation not permitted", "Why_denied", false},
    {": Invalid argument", "Why_nameRefused", false, Place::OfAPath}, // ffmpeg says it of many things
}};

bool tells(const Cause& cause, const QString& line)
{
    const QLatin1String phrase(cause.phrase);
    switch (cause.place) {
    case Place::Anywhere:
        return line.contains(phrase);
    case Place::AtStart:
        return line.startsWith(phrase);
    case Place::OfAPath:
        return line.startsWith(u'/') && line.endsWith(phrase);
    }
    return false;
}

// Null when none is known.
const Cause* causeOf(const QString& line)
{
    const auto found = std::ranges::find_if(causes, [&](const Cause& cause) { return tells(cause, line); });
    return found == causes.end() ? nullptr : found;
}

bool tellsEnd(const QString& line)
{
    const Cause* const cause = causeOf(line);
    return cause != nullptr && cause->place == Place::AtStart;
}

QString behind(const char* key, const QString& line)
{
    return formatText(QStringLiteral("%@ (%@)"), {batchText(key), line});
}

// The line and, when it tells of an unexpected end, the tool's own last words.
QString withLastWords(const QString& line, const QString& before)
{
    const QString words = tellsEnd(line) ? failureLine(before) : QString();
    return words.isNull() ? line : line + QStringLiteral("; ") + words;
}

} // namespace

QString plainReason(const QString& line)
{
    const Cause* const cause = causeOf(line);
    return cause == nullptr ? line : behind(cause->key, line);
}

QString tailReason(const QString& transcript)
{
    const QString line = failureLine(transcript);
    if (line.isNull()) {
        return {};
    }
    const QString before = transcript.left(transcript.lastIndexOf(line));
    // What a tool has named itself is nearer to the cause than how it ended.
    if (const QString words = tellsEnd(line) ? failureLine(before) : QString(); causeOf(words) != nullptr) {
        return plainReason(words);
    }
    return plainReason(withLastWords(line, before));
}

QString machineTrouble(const QString& transcript)
{
    for (const QString& line : linesToArray(transcript)) {
        const QString words = line.trimmed();
        const Cause* const cause = causeOf(words);
        if (cause != nullptr && cause->ofMachine) {
            return behind(cause->key, withLastWords(words, transcript.left(transcript.lastIndexOf(line))));
        }
    }
    return {};
}

QString endLine(const QString& tool, const ChildEnd& end)
{
    const QString words = QString::fromStdString(endText(end));
    return formatText(QStringLiteral("\n%@: %@\n"), {lastPathComponent(tool), words});
}

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
