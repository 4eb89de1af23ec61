// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspecttest.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "testpaths.h"

#include <QProcess>

namespace tavrix::test
{

namespace
{

media::StreamFacts streamFacts(media::Kind kind)
{
    media::StreamFacts facts;
    facts.kind = kind;
    facts.start = 0;
    facts.duration = 6;
    return facts;
}

} // namespace

InspectTest::InspectTest() : previousResources_(resourcePath())
{
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    setLanguage(QStringLiteral("en"));
}

InspectTest::~InspectTest()
{
    setLanguage(QStringLiteral(""));
    setResourcePath(previousResources_);
}

bool makeMedia(const QString& path, const QString& arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    QStringList words{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    words += arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    words << QStringLiteral("file:") + path;
    process.start(QStringLiteral("/usr/bin/ffmpeg"), words);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool makeTransportClip(const QString& path, double seconds)
{
    const QString length = QString::number(seconds);
    return makeMedia(path, QStringLiteral("-f lavfi -i testsrc2=size=1280x720:rate=60000/1001:duration=%1 -f lavfi -i "
                                          "sine=sample_rate=48000:duration=%1 -c:v libx264 -preset ultrafast -pix_fmt "
                                          "yuv420p -c:a ac3 -ac 2 -f mpegts")
                               .arg(length));
}

bool makeAviClip(const QString& path)
{
    return makeMedia(path, QStringLiteral("-f lavfi -i testsrc2=size=640x480:rate=30:duration=1 -f lavfi -i "
                                          "sine=sample_rate=16000:duration=1 -c:v mjpeg -q:v 6 -pix_fmt yuvj420p -c:a "
                                          "pcm_s16le -ac 1 -f avi"));
}

Inspection describedClip()
{
    Inspection clip;
    clip.path = QStringLiteral("/clips/00001.MTS");
    clip.bytes = 6469632;
    clip.infos = {{record::wrapper, QStringLiteral("mpegts")},
                  {record::w_duration, 6},
                  {record::w_offset, 1.428033F},
                  {record::w_bitrate, 8609},
                  {QStringLiteral("v0_id"), 0},
                  {record::v0_codec, QStringLiteral("h264")},
                  {QStringLiteral("v0_chroma"), QStringLiteral("yuv420p")},
                  {record::v0_width, 1280},
                  {record::v0_height, 720},
                  {QStringLiteral("v0_par"), QStringLiteral("1:1")},
                  {QStringLiteral("v0_dar"), QStringLiteral("16:9")},
                  {record::v0_fps, 59.94F},
                  {QStringLiteral("a0_id"), 1},
                  {QStringLiteral("a0_codec"), QStringLiteral("ac3")},
                  {QStringLiteral("a0_rate"), 48000},
                  {QStringLiteral("a0_channels"), 2},
                  {QStringLiteral("a0_bitrate"), 192}};
    media::SourceFacts shown;
    shown.container = "mpegts";
    shown.duration = 6.006;
    shown.streams = {streamFacts(media::Kind::Picture), streamFacts(media::Kind::Sound)};
    clip.shown = shown;
    clip.interlacing = QStringLiteral("PFF");
    clip.offsets = {SoundOffset{33, 31}};
    clip.recording.name = QStringLiteral("clip-2012-05-01 12;34;56-00001");
    clip.recording.date = QStringLiteral("2012-05-01 12:34:56 +0200");
    clip.recording.source = dateSource::file;
    clip.verdict = {true, QString()};
    return clip;
}

} // namespace tavrix::test
