// SPDX-License-Identifier: GPL-3.0-or-later
#include "movencodermedia.h"
#include "testpaths.h"

#include <QDir>
#include <QRegularExpression>

namespace tavrix::test
{

namespace
{

constexpr int longestRun = 120'000; // milliseconds
constexpr double equalPictures = 1000;

void addProbe(QMap<QString, QString>& values, const QString& prefix, const QString& entries, const QString& stream,
              const QString& path)
{
    QStringList arguments{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames")};
    if (!stream.isEmpty()) {
        arguments << QStringLiteral("-select_streams") << stream;
    }
    arguments << QStringLiteral("-show_entries") << entries << QStringLiteral("-of") << QStringLiteral("default=nw=1")
              << path;
    const QList<QByteArray> lines = runProgram(QStringLiteral("ffprobe"), arguments).output.split('\n');
    for (const QByteArray& line : lines) {
        const qsizetype equal = line.indexOf('=');
        const QString key = prefix + QString::fromUtf8(line.left(equal));
        if (equal > 0 && !values.contains(key)) {
            values.insert(key, QString::fromUtf8(line.mid(equal + 1)));
        }
    }
}

} // namespace

ToolResult runProgram(const QString& program, const QStringList& arguments, const std::function<void()>& inChild)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    if (inChild) {
        process.setChildProcessModifier(inChild);
    }
    process.start(program, arguments);
    ToolResult result;
    if (!process.waitForFinished(longestRun)) {
        process.kill();
    } else if (process.exitStatus() == QProcess::NormalExit) {
        result.status = process.exitCode();
    }
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

QString movencoderPath()
{
    return QStringLiteral(TAVRIX_BUILD_RESOURCES "/tools/movencoder");
}

QString settingsPath(const QString& name)
{
    return QStringLiteral(TAVRIX_SOURCE_DIR "/resources/tools/presets/") + name;
}

ToolResult movencode(const QString& settings, const QString& format, const QString& input, const QString& output,
                     const std::function<void()>& inChild)
{
    QStringList arguments{QStringLiteral("-s"), settings};
    if (!format.isEmpty()) {
        arguments << QStringLiteral("-f") << format;
    }
    return runProgram(movencoderPath(), arguments << input << output, inChild);
}

bool makeMedia(const QStringList& arguments)
{
    const QStringList quiet{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                            QStringLiteral("-y")};
    const ToolResult result = runProgram(QStringLiteral("ffmpeg"), quiet + arguments);
    if (result.status != 0) {
        qWarning("ffmpeg: %s", result.errors.constData());
    }
    return result.status == 0;
}

bool makeCameraMovie(const QString& path, int pictures, bool sound)
{
    const QString recording = path + QStringLiteral(".mts");
    const QString seconds = QString::number(pictures * 1001.0 / 60000.0, 'f', 6);
    QStringList record{QStringLiteral("-f"),
                       QStringLiteral("lavfi"),
                       QStringLiteral("-i"),
                       QStringLiteral("mandelbrot=s=1280x720:r=60000/1001:start_scale=0.8:end_pts=400"),
                       QStringLiteral("-f"),
                       QStringLiteral("lavfi"),
                       QStringLiteral("-i"),
                       QStringLiteral("sine=440:r=48000"),
                       QStringLiteral("-vf"),
                       QStringLiteral("scroll=h=0.004:v=0.002,noise=alls=10:allf=t+u,"
                                      "setparams=color_primaries=bt709:color_trc=bt709:colorspace=bt709"),
                       QStringLiteral("-frames:v"),
                       QString::number(pictures),
                       QStringLiteral("-t"),
                       seconds};
    record << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p") << QStringLiteral("-c:v")
           << QStringLiteral("libx264") << QStringLiteral("-preset") << QStringLiteral("veryfast")
           << QStringLiteral("-b:v") << QStringLiteral("24M") << QStringLiteral("-bf") << QStringLiteral("2")
           << QStringLiteral("-g") << QStringLiteral("15") << QStringLiteral("-color_primaries")
           << QStringLiteral("bt709") << QStringLiteral("-color_trc") << QStringLiteral("bt709")
           << QStringLiteral("-colorspace") << QStringLiteral("bt709") << QStringLiteral("-c:a")
           << QStringLiteral("ac3") << recording;
    QStringList rewrap{QStringLiteral("-i"), recording, QStringLiteral("-c:v"), QStringLiteral("copy")};
    if (sound) {
        rewrap << QStringLiteral("-c:a") << QStringLiteral("pcm_s16le");
    } else {
        rewrap << QStringLiteral("-an");
    }
    rewrap << QStringLiteral("-timecode") << QStringLiteral("01:02:03:04") << QStringLiteral("-metadata")
           << QStringLiteral("creation_time=2010-05-07T10:11:12Z") << path;
    return makeMedia(record) && makeMedia(rewrap);
}

QMap<QString, QString> probe(const QString& path)
{
    QMap<QString, QString> values;
    addProbe(values, QString(), QStringLiteral("stream:stream_tags"), QStringLiteral("v:0"), path);
    addProbe(values, QStringLiteral("audio."), QStringLiteral("stream"), QStringLiteral("a:0"), path);
    addProbe(values, QStringLiteral("format."), QStringLiteral("format:format_tags"), QString(), path);
    return values;
}

QByteArray decodeErrors(const QString& path)
{
    const ToolResult result =
        runProgram(QStringLiteral("ffmpeg"),
                   {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                    path, QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")});
    return result.status == 0 ? result.errors : "status " + QByteArray::number(result.status) + result.errors;
}

double psnr(const QString& first, const QString& second, const QString& graph)
{
    // Times that differ by a rounding would make the filter compare neighbours.
    QString counted = graph;
    counted.replace(QStringLiteral("[0:v]"), QStringLiteral("[p]"))
        .replace(QStringLiteral("[1:v]"), QStringLiteral("[q]"));
    counted.prepend(QStringLiteral("[0:v]setpts=N/25/TB[p];[1:v]setpts=N/25/TB[q];"));
    const ToolResult result =
        runProgram(QStringLiteral("ffmpeg"),
                   {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-nostats"),
                    QStringLiteral("-i"), first, QStringLiteral("-i"), second, QStringLiteral("-lavfi"), counted,
                    QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")});
    static const QRegularExpression average(QStringLiteral("average:([0-9.]+|inf)"));
    const auto match = average.match(QString::fromUtf8(result.errors));
    if (!match.hasMatch()) {
        return -1;
    }
    return match.captured(1) == QStringLiteral("inf") ? equalPictures : match.captured(1).toDouble();
}

QByteArray soundBytes(const QString& path)
{
    return runProgram(QStringLiteral("ffmpeg"),
                      {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                       path, QStringLiteral("-map"), QStringLiteral("0:a:0"), QStringLiteral("-c"),
                       QStringLiteral("copy"), QStringLiteral("-f"), QStringLiteral("data"), QStringLiteral("-")})
        .output;
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace tavrix::test
