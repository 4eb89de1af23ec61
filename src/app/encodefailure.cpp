#include "app/encodefailure.h"

#include "base/conversions.h"
#include "base/format.h"
#include "probe/batchtexts.h"

#include <QStringList>

#include <array>
#include <string_view>

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

struct Cause {
    const char* phrase; // of the system or a tool
    const char* key;
    bool ofMachine; // no clip can be read or written while it lasts
};

constexpr std::array<Cause, 20> causes = {{
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
    {"Invalid argument", "Why_nameRefused", false},
}};

// ffmpeg says "Invalid argument" of many things; of a name only in a line that consists of a path and these words.
bool tells(const Cause& cause, const QString& line)
{
    if (!line.contains(QLatin1String(cause.phrase))) {
        return false;
    }
    return cause.phrase != std::string_view("Invalid argument") ||
           (line.startsWith(u'/') && line.endsWith(QLatin1String(": Invalid argument")));
}

QString behind(const char* key, const QString& line)
{
    return formatText(QStringLiteral("%@ (%@)"), {batchText(key), line});
}

} // namespace

QString plainReason(const QString& line)
{
    for (const Cause& cause : causes) {
        if (tells(cause, line)) {
            return behind(cause.key, line);
        }
    }
    return line;
}

QString machineTrouble(const QString& transcript)
{
    for (const QString& line : linesToArray(transcript)) {
        for (const Cause& cause : causes) {
            if (cause.ofMachine && tells(cause, line)) {
                return behind(cause.key, line.trimmed());
            }
        }
    }
    return {};
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
