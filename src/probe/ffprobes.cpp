// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffprobes.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/numberconversions.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "base/text/text.h"
#include "process/runners.h"
#include "process/shelltext.h"

#include <QFile>

namespace tavrix
{

namespace
{

constexpr int audioProbeSeconds = 5;
constexpr int firstRevisionWithSetdar = 23048;

// Text of a capture file; bytes that are not UTF-8 (a file name in the messages) must not hide the messages themselves.
QString captureText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    const QString text = decodedUtf8(bytes);
    return text.isNull() ? QString::fromLatin1(bytes) : text;
}

} // namespace

int ffRevisionFromBanner(const QString& banner)
{
    const QStringList pieces = componentsSeparated(banner, QStringLiteral("git-N-"));
    return pieces.size() < 2 ? 0 : leadingInteger(textBefore(pieces.at(1), QStringLiteral("-")));
}

int ffRevisionInt()
{
    QString command = formatText(QStringLiteral("\"%@\" 2>&1"), {shellDoubleQuoted(ffmpegPathStr())});
    const int revision = ffRevisionFromBanner(taskWithStr(command));
    logLine(QStringLiteral("FFmpeg version      : %d"), {revision});
    return revision;
}

bool ffmpegSuccess(const QString& text)
{
    const QString lower = text.toLower();
    bool success = !lower.isEmpty();
    for (const char* failure : {": unknown format", ": i/o error occured", ": could not find codec parameters",
                                "unsupported video codec", "error while opening file"}) {
        success = success && !lower.contains(QLatin1String(failure));
    }
    logLine(success ? QStringLiteral("ffmpegSuccess       :-)") : QStringLiteral("ffmpegSuccess       :-("));
    return success;
}

QString forceFormatLite(const QString& text)
{
    struct Tag {
        const char* name;
        const char* format;
    };
    // The last name of each kind can never be the first one found: the shorter one before it matches too.
    static constexpr Tag tags[] = {{"m1s", "mpeg"}, {"m1v", "mpegvideo"}, {"m1v1", nullptr},
                                   {"m2s", "mpeg"}, {"m2v", "mpegvideo"}, {"m2v1", nullptr}};
    for (const Tag& tag : tags) {
        if (text.contains(formatText(QStringLiteral("Data: %@"), {tag.name}))) {
            return tag.format == nullptr ? QString() : QString(QLatin1String(tag.format));
        }
    }
    return {};
}

QString forceFormatFromAnswer(const QString& fileAnswer, const QString& text)
{
    if (fileAnswer.isEmpty()) {
        return {};
    }
    if (fileAnswer.contains(QLatin1String("DIF (DV"))) {
        return QStringLiteral("dv");
    }
    if (fileAnswer.contains(QLatin1String("MPEG"))) {
        return QStringLiteral("mpeg");
    }
    return forceFormatLite(text);
}

QString forceFormat(const QString& path, const QString& text)
{
    if (text.isNull()) {
        return {};
    }
    const QString answer = taskArray({QStringLiteral("/usr/bin/file"), QStringLiteral("-b"), path}, false);
    return forceFormatFromAnswer(answer, text);
}

QString audioCodecCommand(const QString& ffmpeg, const QString& path, const QString& capture, const QString& format)
{
    const QString tool = shellDoubleQuoted(ffmpeg);
    const QString source = shellWord(path);
    const QString target = shellWord(capture);
    if (format.isNull()) {
        return formatText(QStringLiteral("\"%@\" -t %d -i %@ -vn -f wav -y /dev/null &> %@"),
                          {tool, audioProbeSeconds, source, target});
    }
    QString command = formatText(QStringLiteral("\"%@\" -t %d "), {tool, audioProbeSeconds});
    command = formatText(QStringLiteral("%@ -f %@"), {command, shellWord(format)});
    return formatText(QStringLiteral("%@ -i %@ -vn -f wav -y /dev/null &> %@"), {command, source, target});
}

bool ffmpegSuccessAudioCodec(const QString& path)
{
    if (!mkdirCocoa(cachesFolder())) {
        logLine(QStringLiteral("ffAudioCodec        :-( %@"), {cachesFolder()});
    }
    const QString capture = stringByAppendingPathComponent(cachesFolder(), QStringLiteral("ffAudioCodec.txt"));
    const QString answer = taskWithStr(audioCodecCommand(ffmpegPathStr(), path, capture, QString()));
    if (!ffmpegSuccess(answer)) {
        const QString format = forceFormat(path, answer);
        if (!format.isNull()) {
            const QString second = taskWithStr(audioCodecCommand(ffmpegPathStr(), path, capture, format));
            logDebug(QStringLiteral("ffAudioCodec        : %@"), {second});
        }
    }
    const QString read = captureText(capture);
    if (read.isNull()) {
        return true;
    }
    const QString text = read.toLower();
    if (!rmCocoa(capture)) {
        logLine(QStringLiteral("ffAudioCodec        :-( %@"), {capture});
    }
    return !text.contains(QLatin1String("spectral extension attenuation not implemented.")) &&
           !text.contains(QLatin1String("pas d'autre string a parser pour le moment ;-)"));
}

QString durationM2vCommand(const QString& ffmpeg, const QString& path)
{
    return formatText(
        QStringLiteral("\"%@\" -i \"%@\" -vcodec copy -an -f null -y /dev/null 2>&1 | grep time= | strings "
                       "| tail -1 | /usr/bin/awk -F \"time=\" '{print $2}' | /usr/bin/awk '{print $1}'"),
        {shellDoubleQuoted(ffmpeg), shellDoubleQuoted(path)});
}

int durationM2v(const QString& path)
{
    if (!testPresenceCocoa(path)) {
        return 0;
    }
    const QString answer = taskWithStr(durationM2vCommand(ffmpegPathStr(), path));
    return truncatedInt(static_cast<double>(str2Float(answer)));
}

QString mpegTsCommand(const QString& ffmpeg, const QString& path)
{
    return formatText(QStringLiteral("\"%@\" -i \"%@\" 2>&1  | /usr/bin/tail -100 | /usr/bin/strings | /usr/bin/grep "
                                     "'Input #0' | /usr/bin/awk -F 'from' '{print $1}' | /usr/bin/grep mpegts"),
                      {shellDoubleQuoted(ffmpeg), shellDoubleQuoted(path)});
}

bool mpegTs(const QString& path, const QString& text)
{
    if (!path.isEmpty()) {
        // No output is "nothing", which is not the empty text: only undecodable output says no.
        const QString answer = taskWithStr(mpegTsCommand(ffmpegPathStr(), path));
        return answer.isNull() || !answer.isEmpty();
    }
    const QString from = QStringLiteral("from");
    for (const QString& line : linesToArray(text)) {
        if (line.contains(QLatin1String("Input #0")) && line.contains(from) &&
            textBefore(line, from).contains(QLatin1String("mpegts"))) {
            return true;
        }
    }
    return false;
}

QString ffmpegVsyncCommand(const QString& ffmpeg, const QString& path, const QString& forcedFormat)
{
    QString command = formatText(
        QStringLiteral("\"%@\" -v 3 -vframes 35 -i \"%@\" -s 320x240 -pix_fmt yuv420p -an -f null -y /dev/null 2>&1"),
        {shellDoubleQuoted(ffmpeg), shellDoubleQuoted(path)});
    if (forcedFormat.isEmpty()) {
        return command;
    }
    // The quote closes the tool's folder, so that the format option stands right behind the tool's bare name.
    return findAndReplace(command, QStringLiteral("ffmpeg\" "),
                          formatText(QStringLiteral("\"ffmpeg -f %@ "), {shellWord(forcedFormat)}));
}

bool ffmpegVsync(const QString& path, const QString& text, const QString& forcedFormat)
{
    const bool ask = !text.isNull() && text.isEmpty();
    const QString tested = ask ? taskWithStr(ffmpegVsyncCommand(ffmpegPathStr(), path, forcedFormat)) : text;
    const bool hack = tested.contains(QLatin1String("***")) && tested.contains(QLatin1String("dup!")) &&
                      tested.contains(QLatin1String("timestamp discontinuity"));
    if (hack) {
        logLine(QStringLiteral("hack ffmpeg"));
    }
    return hack;
}

QStringList ffAspectArgs(const QString& aspect, int revision)
{
    if (revision < firstRevisionWithSetdar) {
        return {QStringLiteral("-aspect"), aspect};
    }
    return {QStringLiteral("-vf"), formatText(QStringLiteral("'setdar=%@'"), {aspect})};
}

QStringList ffAspectArgs(const QString& aspect)
{
    return ffAspectArgs(aspect, ffRevisionInt());
}

QStringList ffAspect(const QString& aspect, bool asString)
{
    const QStringList arguments = ffAspectArgs(aspect);
    return asString ? QStringList{array2Str(arguments)} : arguments;
}

QString interlacedYuvheadersArgsStr(const QString& path)
{
    return formatText(
        QStringLiteral("\"%@\" -vframes 1 -i %@ -s 640x480 -pix_fmt yuv420p -f yuv4mpegpipe - 2>/dev/null | "
                       "/usr/bin/head -1 | /usr/bin/strings | /usr/bin/awk -F ' I' '{print $2}' | /usr/bin/awk '{print "
                       "$1}'"),
        {shellDoubleQuoted(ffmpegPathStr()), path});
}

QStringList interlacedYuvheadersArgs(const QString& path)
{
    return {ffmpegPathStr(),
            QStringLiteral("-vframes"),
            QStringLiteral("1"),
            QStringLiteral("-i"),
            path,
            QStringLiteral("-s"),
            QStringLiteral("640x480"),
            QStringLiteral("-pix_fmt"),
            QStringLiteral("yuv420p"),
            QStringLiteral("-f"),
            QStringLiteral("yuv4mpegpipe"),
            QStringLiteral("-y"),
            formatText(QStringLiteral("%@frame.yuv"), {getTMPFOLDER()})};
}

QString interlacedYuvheaders2tvxStr(const QString& letter)
{
    QString key = QStringLiteral("PFF");
    if (letter == QLatin1String("t")) {
        key = QStringLiteral("TFF");
    } else if (letter == QLatin1String("b")) {
        key = QStringLiteral("BFF");
    }
    return localizedString(key, QStringLiteral("fields"));
}

QStringList ffYuvInputArray()
{
    return {QStringLiteral("|"),  ffmpegPathStr(),    QStringLiteral("-f"), QStringLiteral("yuv4mpegpipe"),
            QStringLiteral("-i"), QStringLiteral("-")};
}

QStringList ffYuvOutputArray()
{
    return {QStringLiteral("-f"), QStringLiteral("yuv4mpegpipe"), QStringLiteral("-")};
}

} // namespace tavrix
