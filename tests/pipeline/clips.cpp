// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/clips.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

namespace tavrix::test
{

namespace
{

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

bool runTool(const QString& program, const QStringList& arguments, QByteArray* output)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    const bool ended = process.waitForFinished(-1);
    if (output != nullptr) {
        *output = process.readAllStandardOutput();
    }
    return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool makeClip(const QString& path, const ClipRequest& request)
{
    const QString seconds = QString::number(request.seconds);
    QStringList arguments = words("-nostdin -hide_banner -loglevel error -y -f lavfi -i");
    arguments << QStringLiteral("testsrc2=size=%1:rate=%2:duration=%3").arg(request.size, request.rate, seconds);
    arguments << words("-f lavfi -i");
    arguments << QStringLiteral("sine=frequency=440:sample_rate=48000:duration=%1").arg(seconds);
    arguments << request.codecs << QStringLiteral("file:") + path;
    return runTool(QStringLiteral("/usr/bin/ffmpeg"), arguments);
}

ClipRequest avchdLiteClip()
{
    ClipRequest request;
    request.codecs = words("-c:v libx264 -preset ultrafast -pix_fmt yuv420p -g 30 -c:a ac3 -ac 2 -f mpegts");
    return request;
}

ClipRequest motionJpegClip()
{
    ClipRequest request;
    request.size = QStringLiteral("640x480");
    request.rate = QStringLiteral("30");
    request.codecs = words("-c:v mjpeg -q:v 6 -pix_fmt yuvj420p -c:a pcm_s16le -ar 16000 -ac 1 -f avi");
    return request;
}

ClipRequest smallMotionJpegClip()
{
    ClipRequest request = motionJpegClip();
    request.size = QStringLiteral("320x240");
    request.rate = QStringLiteral("15");
    request.seconds = 7;
    return request;
}

ClipRequest interlacedClip()
{
    ClipRequest request;
    request.size = QStringLiteral("720x576");
    request.rate = QStringLiteral("25");
    request.seconds = 1;
    request.codecs = words("-vf setfield=tff -c:v libx264 -preset ultrafast -flags +ildct+ilme -x264opts tff=1 "
                           "-pix_fmt yuv420p -c:a ac3 -f mpegts");
    return request;
}

ClipRequest fullHdClip()
{
    ClipRequest request = avchdLiteClip();
    request.size = QStringLiteral("1920x1080");
    request.rate = QStringLiteral("25");
    request.seconds = 1;
    return request;
}

QJsonObject probed(const QString& path)
{
    QByteArray output;
    if (!runTool(QStringLiteral("/usr/bin/ffprobe"),
                 words("-v error -show_streams -show_format -of json -i") << QStringLiteral("file:") + path, &output)) {
        return {};
    }
    return QJsonDocument::fromJson(output).object();
}

QJsonObject streamOf(const QJsonObject& probe, const QString& type)
{
    const QJsonArray streams = probe.value(QLatin1String("streams")).toArray();
    for (const auto& stream : streams) {
        if (stream.toObject().value(QLatin1String("codec_type")).toString() == type) {
            return stream.toObject();
        }
    }
    return {};
}

double secondsOf(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toString().toDouble();
}

} // namespace tavrix::test
