// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/recordingname.h"

#include "base/bundle/bundle.h"
#include "base/files/filelisting.h"
#include "base/files/fileops.h"
#include "base/files/posixfile.h"
#include "base/text/datetext.h"
#include "base/text/format.h"
#include "base/text/listconversions.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "media/clipdates.h"
#include "process/runners.h"
#include "process/shelltext.h"

#include <QDateTime>

#include <fcntl.h>
#include <sys/stat.h>

namespace tavrix
{

namespace
{

QString baseNameOf(const QString& path)
{
    return stringByDeletingPathExtension(lastPathComponent(path));
}

// What the camera's play lists hold about the clip, "clip-20YY-MM-DD HH;MM;SS"; nothing when there is no line.
QString lineOfPlaylists(const QString& sourcePath)
{
    const QString grandparent = stringByDeletingLastPathComponent(stringByDeletingLastPathComponent(sourcePath));
    const QString separator = QStringLiteral(" : ");
    const QString base = baseNameOf(sourcePath);
    const QStringList entries = lsCocoa(grandparent).value_or(QStringList());
    for (const QString& entry : entries) {
        if (!entry.contains(QLatin1String("PLAYLIST"))) {
            continue;
        }
        const QString folder = formatText(QStringLiteral("%@/PLAYLIST/"), {grandparent});
        for (const QString& line : linesToArray(taskWithStrBasic(timestampCommand(toolsFolder(), folder)))) {
            const QStringList pieces = componentsSeparated(line, separator);
            if (pieces.size() > 1 && pieces.at(0) == base) {
                return pieces.at(1);
            }
        }
    }
    return {};
}

RecordingName namedByPlaylist(const QString& sourcePath)
{
    RecordingName result;
    const QString line = lineOfPlaylists(sourcePath);
    if (line.isNull()) {
        return result;
    }
    result.name = formatText(QStringLiteral("%@-%@"), {line, baseNameOf(sourcePath)});
    result.source = dateSource::playlist;
    const QString date =
        findAndReplace(textAfter(line, QStringLiteral("clip-")), QStringLiteral(";"), QStringLiteral(":"));
    // A damaged playlist names its clip all the same.
    if (const std::optional<WrittenDate> written = writtenDate(date.toStdString())) {
        const qint64 reading = secondsOfClock(written->clock);
        result.date = readingText(reading);
        result.seconds = secondsOfLocalReading(reading);
    }
    return result;
}

SystemTime systemTime(qint64 seconds)
{
    return {seconds, secondsAheadOfUtc(seconds)};
}

// Nothing for what is no regular file: nobody waits for the writer of a pipe.
ClipDates datesInside(const QString& sourcePath)
{
    const Descriptor file = openFile(systemPath(sourcePath), O_RDONLY);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    return clipDates(readAtOf(file.get()), static_cast<std::uint64_t>(status.st_size));
}

QString sourceOf(DateOrigin origin)
{
    switch (origin) {
    case DateOrigin::PictureStream:
        return dateSource::pictureStream;
    case DateOrigin::CreationDate:
        return dateSource::creationDate;
    case DateOrigin::MovieHeader:
        return dateSource::movieHeader;
    case DateOrigin::AviDate:
        break;
    }
    return dateSource::aviDate;
}

// The name takes the form that it has with the file's date, whichever the date is.
void setNameOfDate(RecordingName& result, const QString& sourcePath)
{
    // The zone is only cut east of Greenwich; west of it the name keeps it, as the user's older outputs do.
    const QString date = result.date.isNull() ? result.date : textBefore(result.date, QStringLiteral(" +"));
    const QString name = formatText(QStringLiteral("clip-%@-%@"), {date, baseNameOf(sourcePath)});
    result.name = findAndReplace(name, QStringLiteral(":"), QStringLiteral(";"));
}

RecordingName namedByClip(const QString& sourcePath, std::optional<qint64> fileSeconds)
{
    RecordingName result;
    const std::optional<SystemTime> file =
        fileSeconds ? std::optional<SystemTime>(systemTime(*fileSeconds)) : std::nullopt;
    const std::optional<RecordingDate> date =
        recordingDate(datesInside(sourcePath), file, systemTime(QDateTime::currentSecsSinceEpoch()));
    if (!date) {
        return result;
    }
    result.source = sourceOf(date->origin);
    result.seconds = date->isMoment ? date->seconds : secondsOfLocalReading(date->seconds);
    result.date = date->isMoment ? dateText(date->seconds) : readingText(date->seconds);
    setNameOfDate(result, sourcePath);
    return result;
}

RecordingName namedByFile(const QString& sourcePath, std::optional<qint64> fileSeconds)
{
    RecordingName result;
    if (fileSeconds) {
        result.source = dateSource::file;
        result.seconds = fileSeconds;
        result.date = dateText(*fileSeconds);
    }
    setNameOfDate(result, sourcePath);
    return result;
}

} // namespace

RecordingName recordingName(const QString& sourcePath)
{
    if (sourcePath.isNull()) {
        return {};
    }
    RecordingName result = namedByPlaylist(sourcePath);
    if (!result.name.isNull()) {
        return result;
    }
    const std::optional<qint64> fileSeconds = creationSeconds(sourcePath);
    result = namedByClip(sourcePath, fileSeconds);
    if (result.name.isNull()) {
        result = namedByFile(sourcePath, fileSeconds);
    }
    if (result.name.isNull()) {
        result.name = lastPathComponent(sourcePath);
    }
    return result;
}

QString timestampCommand(const QString& tools, const QString& playlistFolder)
{
    return formatText(QStringLiteral("\"%@/\"gettimestamps '%@'"),
                      {shellDoubleQuoted(tools), shellSingleQuoted(playlistFolder)});
}

} // namespace tavrix
