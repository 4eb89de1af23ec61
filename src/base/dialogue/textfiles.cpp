// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/textfiles.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/files/posixfile.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "base/text/shellquoting.h"
#include "base/text/text.h"
#include "sys/childend.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace tavrix
{
namespace
{

constexpr std::uint64_t largestText = std::uint64_t{512} << 20; // bytes
// A volume that does not answer any more must not hold the program up for ever.
constexpr std::chrono::seconds longestCopy(120);

const QByteArray& utf8Mark()
{
    static const QByteArray mark("\xEF\xBB\xBF");
    return mark;
}

struct TextRead {
    QString text; // nothing when the read failed
    StringEncoding encoding = 0;
    QString error;
};

TextRead readDetecting(const QString& path)
{
    const Result<QByteArray> contents = readFile<QByteArray>(systemPath(path), largestText);
    if (!contents) {
        return {QString(), 0, QString::fromStdString(contents.reason())};
    }
    TextRead read;
    read.text = decodedText(*contents, &read.encoding);
    if (read.text.isNull()) {
        read.error = systemErrorText(EILSEQ);
    }
    return read;
}

// A missing file counts as copyable: the shell then leaves an empty copy. Pipes and devices would never end, and a link
// or a special file in the copy's place would be written through.
bool canBeCopiedByShell(const QString& path, const QString& copy)
{
    const std::optional<struct stat> source = followedStatus(systemPath(path));
    const std::optional<struct stat> target = linkStatus(systemPath(copy));
    return (!source || (S_ISREG(source->st_mode) && static_cast<std::uint64_t>(source->st_size) <= largestText)) &&
           (!target || S_ISREG(target->st_mode));
}

// False when it could not be run to its end; the copy may hold a part then.
bool copyByShell(const QString& path, const QString& copy)
{
    const QString command =
        formatText(QStringLiteral("/bin/cat \"%@\" > \"%@\""), {shellDoubleQuoted(path), shellDoubleQuoted(copy)});
    SpawnRequest shell;
    shell.program = "/bin/sh";
    shell.arguments = {shell.program, "-c", command.toStdString()};
    shell.environment = {{"LC_CTYPE", "en_US.UTF-8"}};
    const Result<ChildEnd> end = runToEnd(shell, longestCopy);
    if (!end) {
        logLine(QStringLiteral("/bin/sh             :-( %@"), {QString::fromStdString(end.reason())});
    }
    return end.hasValue();
}

void logWriteError(const QString& path, const QString& reason)
{
    logLine(QStringLiteral("Error writing file at %@\n%@"), {path, reason});
}

} // namespace

QString readContentsTxtUTF8(const QString& path)
{
    if (path.isNull()) {
        return {};
    }
    const QString source = stringByExpandingTildeInPath(path);
    const TextRead read = readDetecting(source);
    logLine(QStringLiteral("encoding : %d"), {static_cast<int>(read.encoding)});
    if (!read.text.isNull()) {
        return read.text;
    }
    logLine(QStringLiteral("Error reading file at path %@\n%@"), {path, read.error});
    const QString copy = source + QStringLiteral(".txt");
    if (source.isEmpty() || source.contains(QChar(0)) || !canBeCopiedByShell(source, copy)) {
        return {};
    }
    if (!copyByShell(source, copy)) {
        return {};
    }
    const Result<QByteArray> contents = readFile<QByteArray>(systemPath(copy), largestText, O_NOFOLLOW);
    QString text = contents ? decodedAscii(*contents) : QString();
    // The flag is not the one that allows replacing, so the copy stays beside the file.
    if (!text.isNull() && linkStatus(systemPath(source))) {
        mvCocoa(copy, source, QStringLiteral("-y"));
    }
    logDebug(QStringLiteral("str : %@"), {text});
    return text;
}

QString readContentsTxtC(const QString& path, int characterLimit)
{
    const Descriptor file = openFile(systemPath(path), O_RDONLY);
    if (!file.isOpen()) {
        return {};
    }
    const double size = poidsFile(path, QStringLiteral("o"));
    logLine(QStringLiteral("poidsFile(srcPathStr, o) : %f"), {size});
    if (size < 0.1) {
        return {};
    }
    const int count = std::min(truncatedInt(size), characterLimit);
    logLine(QStringLiteral("charInt = %d"), {count});
    if (count < 1) {
        return {};
    }
    QByteArray line;
    while (line.size() < count - 1 && !line.contains('\n')) {
        QByteArray chunk(std::min<qsizetype>(4096, count - 1 - line.size()), Qt::Uninitialized);
        const ssize_t got = ::read(file.get(), chunk.data(), static_cast<std::size_t>(chunk.size()));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return {};
        }
        if (got == 0) {
            break;
        }
        line.append(chunk.constData(), static_cast<qsizetype>(got));
    }
    if (const qsizetype feed = line.indexOf('\n'); feed >= 0) {
        line.truncate(feed + 1);
    }
    // A line of the C library ends at the first NUL.
    if (const qsizetype end = line.indexOf('\0'); end >= 0) {
        line.truncate(end);
    }
    return decodedAscii(line);
}

bool writeUtf8Bom(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    Descriptor file = openFile(systemPath(path), O_WRONLY | O_NOFOLLOW);
    if (!file.isOpen() || !writeAll(file.get(), viewOf(utf8Mark())) || !file.close()) {
        logWriteError(path, systemErrorText());
    }
    logLine(QStringLiteral("Fixed BOM           :-) %@"), {path});
    return true;
}

bool writeTextFileUtf8Bom(const QString& path, const QString& text)
{
    if (path.isEmpty() || text.isEmpty()) {
        return false;
    }
    const QString expanded = stringByExpandingTildeInPath(path);
    const QByteArray bytes = systemPath(expanded);
    if (!testPresenceC(expanded)) {
        if (!openFile(bytes, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600).isOpen()) {
            std::fputs("Impossible to create destination file !\n", stderr);
            return false;
        }
        if (getDEBUGDEV() != 0) {
            displayAlert(expanded, QStringLiteral("created"), 0, nullptr);
        }
        writeUtf8Bom(expanded);
    }
    Descriptor file = openFile(bytes, O_RDWR | O_APPEND | O_NOFOLLOW);
    if (!file.isOpen() || !writeAll(file.get(), viewOf(text.toUtf8())) || !file.close()) {
        logWriteError(expanded, systemErrorText());
        return false;
    }
    logLine(QStringLiteral("ecrit               :-) %@"), {expanded});
    return true;
}

bool ecritureFichier(const QString& path, const QString& text, int flag)
{
    if (path.isNull() || text.isNull()) {
        return false;
    }
    logLine(QStringLiteral("%d"), {flag});
    const QString expanded = stringByExpandingTildeInPath(path);
    QString normalised = text;
    normalised.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    normalised.replace(u'\r', u'\n');
    const QByteArray bytes = systemPath(expanded);
    // Written in place: a new file in its stead would lose the owner, the mode and other names of the old one.
    Descriptor file = openFile(bytes, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0666);
    if (!file.isOpen() || !writeAll(file.get(), viewOf(normalised.toUtf8())) || !file.close()) {
        logWriteError(expanded, systemErrorText());
        return false;
    }
    logDebug(QStringLiteral("ecritureFichier     :-)"));
    return true;
}

QString encodingCharsetIdentify2iconv(const QString& path)
{
    if (path.isNull()) {
        return {};
    }
    const TextRead read = readDetecting(path);
    logLine(QStringLiteral("encoding             : %u"), {read.encoding});
    if (read.text.isNull()) {
        logLine(QStringLiteral("encodingCharsetIdenti:-( %@"), {read.error});
        return QStringLiteral("CP1252");
    }
    return iconvName(read.encoding);
}

namespace
{

// Path of a strings file given by path or by resource name; nothing when there is none.
QString stringsFilePath(const QString& stringsFile)
{
    QString path = stringsFile;
    if (pathExtension(path).isEmpty()) {
        path += QStringLiteral(".strings");
    }
    if (testPresenceC(path)) {
        return path;
    }
    const QString name = stringByDeletingPathExtension(path);
    QString resource = pathForResource(name, pathExtension(path));
    if (!resource.isNull()) {
        return resource;
    }
    return pathForResource(currentLanguage() + QStringLiteral(".lproj/") + name, pathExtension(path));
}

} // namespace

QString str2LocalisationTitle(const QString& text, const QString& stringsFile)
{
    if (text.isNull()) {
        return QStringLiteral("");
    }
    if (stringsFile.isNull()) {
        return text;
    }
    const QString path = stringsFilePath(stringsFile);
    if (path.isNull()) {
        return text;
    }
    const QStringList lines = linesToArray(readContentsTxtUTF8(path));
    const QString quote = QStringLiteral("\"");
    for (const QString& line : lines) {
        const QStringList byQuote = componentsSeparated(line, quote);
        const QStringList byEquals = componentsSeparated(line, QStringLiteral("="));
        if (byQuote.size() < 2 || byEquals.size() < 2) {
            continue;
        }
        // The piece behind the first equals sign, wherever that stands: a key that holds one never matches.
        const QStringList value = componentsSeparated(byEquals.at(1), quote);
        if (value.size() >= 2 && value.at(1) == text) {
            return byQuote.at(1);
        }
    }
    logLine(QStringLiteral("str2LocalisationTitl:-("));
    return text;
}

} // namespace tavrix
