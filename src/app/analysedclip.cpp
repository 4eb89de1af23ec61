// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/analysedclip.h"

#include "app/encodefailure.h"
#include "base/files/filebeginnings.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "probe/batchtexts.h"
#include "probe/cameraclip.h"
#include "probe/ffinfos.h"
#include "probe/ffprobes.h"
#include "probe/recordingname.h"

#include <QRandomGenerator>

#include <utility>

namespace tavrix
{

QString frameFile()
{
    return formatText(QStringLiteral("%@frame.yuv"), {getTMPFOLDER()});
}

QString interlacingOfFrames()
{
    QString letter;
    if (testPresenceCocoa(frameFile())) {
        letter = interlacingLetter(firstLineOfFile(frameFile()));
        removeOwnFile(frameFile(), getTMPFOLDER());
    }
    return interlacedYuvheaders2tvxStr(letter);
}

QString unreadableReason(const QString& text)
{
    const QString line = failureLine(text);
    if (line.isNull()) {
        return batchText("Clip_noVideo");
    }
    const QString reason = plainReason(line);
    return reason != line ? reason : formatText(QStringLiteral("%@ (%@)"), {batchText("Clip_noVideo"), line});
}

QString thumbnailPath(const QString& source)
{
    const QString image = formatText(QStringLiteral("%@%@.jpg"), {getTMPFOLDER(), lastPathComponent(source)});
    if (!testPresenceCocoa(image)) {
        return image;
    }
    const int number = static_cast<int>(QRandomGenerator::global()->generate() & 0x7FFFFFFFU);
    return formatText(QStringLiteral("%@_%d.jpg"), {stringByDeletingPathExtension(image), number});
}

BatchRow analysedRow(const QString& source, MediaInfoRecord infos, const QString& image, int out)
{
    infos.insert(record::v0_aspect, clipAspect(infos));
    infos.insert(record::mainEncSrcPathStr, source);
    if (!image.isNull()) {
        infos.insert(record::imgPathStr, image);
    }
    const RecordingName named = recordingName(source);
    if (!named.date.isNull()) {
        infos.insert(record::recordingDate, named.date);
        infos.insert(record::recordingDateSource, named.source);
    }
    infos.insert(record::out, out);
    BatchRow row;
    row.src = lastPathComponent(source);
    row.out = out;
    row.resultat = rowIcon::pending;
    row.dico = std::move(infos);
    row.img = isJpegFile(image) ? image : QString();
    return row;
}

} // namespace tavrix
