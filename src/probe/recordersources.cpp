// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/recordersources.h"

#include "base/dialogue/alerts.h"
#include "base/files/fileinfo.h"
#include "base/files/filelisting.h"
#include "base/files/posixfile.h"
#include "base/store/settings.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "platform/datasearch.h"
#include "probe/recordingname.h"

#include <QFile>

#include <fcntl.h>

namespace tavrix
{

namespace
{

const QString eyetvMark = QStringLiteral(".eyetv/");
constexpr std::uint64_t descriptionLimit = std::uint64_t{16} << 20; // bytes
constexpr qint64 dateHeadLength = 1000;
constexpr qint64 dateTextOffset = 13;
constexpr qint64 dateTextLength = 10;

QString baseNameOf(const QString& path)
{
    return stringByDeletingPathExtension(lastPathComponent(path));
}

void logDate(const QString& text)
{
    const qsizetype point = findText(text, QStringLiteral("."));
    QString day;
    QString month;
    QString year;
    if (point == 4) {
        logDebug(QStringLiteral("date us"));
        year = text.mid(0, 4);
        month = text.mid(5, 2);
        day = text.mid(8, 2);
    } else if (point == 2) {
        logDebug(QStringLiteral("date eu"));
        day = text.mid(0, 2);
        month = text.mid(3, 2);
        year = text.mid(6, 4);
    } else {
        logLine(QStringLiteral("date us / en :-("));
        return;
    }
    logLine(QStringLiteral("%@ / %@ / %@"), {day, month, year});
}

} // namespace

QString bundledVideoName(const QString& path)
{
    if (path.isNull()) {
        return {};
    }
    for (const QString& mark : {QStringLiteral(".iMovieProject/"), eyetvMark}) {
        if (path.contains(mark)) {
            return lastPathComponent(textBefore(path, mark));
        }
    }
    return baseNameOf(path);
}

float eyetvDurationFromText(const QString& description)
{
    QString flat;
    flat.reserve(description.size());
    for (const QChar character : description) {
        if (!isNewline(character) && character != QLatin1Char('\t')) {
            flat.append(character);
        }
    }
    const QString endMark = QStringLiteral("</real>");
    const QString rest = textAfter(flat, QStringLiteral("<key>actual duration</key><real>"));
    if (!containsText(rest, endMark)) {
        return 0.0F;
    }
    return static_cast<float>(floatPrefix(textBefore(rest, endMark)));
}

float bundledVideoEyetvDuration(const QString& path)
{
    if (!containsText(path, eyetvMark)) {
        return 0.0F;
    }
    const QString description = fileFromFolder(stringByDeletingLastPathComponent(path), QStringLiteral("eyetvr"));
    if (description.isEmpty()) {
        return 0.0F;
    }
    if (!testPresenceC(description)) {
        logLine(QStringLiteral("bundledVideoEyetvDura- not readable"));
        return 0.0F;
    }
    const Result<QByteArray> contents = readFile<QByteArray>(systemPath(description), descriptionLimit);
    if (!contents) {
        logLine(QStringLiteral("bundledVideoEyetvDura- no read"));
        return 0.0F;
    }
    const float duration = eyetvDurationFromText(decodedUtf8(*contents));
    logDebug(QStringLiteral("returnFloat          : %f"), {static_cast<double>(duration)});
    return duration;
}

QString dateCreation2iMovieName(const QString& sourcePath)
{
    if (sourcePath.isNull()) {
        return {};
    }
    const QString name = recordingName(sourcePath).name;
    if (getDEBUGDEV() != 0) {
        displayAlert(QStringLiteral("dstPathNameStr :"), name, 0, nullptr);
    }
    return name;
}

int readVideoCreationDate(const QString& path)
{
    const Descriptor opened = openFile(systemPath(path), O_RDONLY);
    QFile file;
    if (!opened.isOpen() || !file.open(opened.get(), QIODevice::ReadOnly)) {
        logLine(QStringLiteral("readVideoCreationDate :-( %@"), {path});
        return 0;
    }
    const QByteArray head = file.read(dateHeadLength);
    const unsigned int found = offsetOfData(head, QByteArray::fromHex("ffff1e20"));
    if (found == dataNotFound || qint64{found} > head.size() - 8 ||
        qint64{found} + dateTextOffset + dateTextLength > head.size()) {
        return 0;
    }
    logDate(QString::fromLatin1(head.mid(qint64{found} + dateTextOffset, dateTextLength)));
    return 1;
}

} // namespace tavrix
