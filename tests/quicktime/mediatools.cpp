// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediatools.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtEndian>

#include <gtest/gtest.h>

#include <cstring>

namespace tavrix::test
{

QByteArray mediaTool(const QString& name, const QStringList& arguments)
{
    QProcess process;
    process.setProgram(QStandardPaths::findExecutable(name));
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    const bool ended = process.waitForFinished(120000);
    EXPECT_TRUE(ended && process.exitCode() == 0)
        << name.toStdString() << ' ' << arguments.join(QLatin1Char(' ')).toStdString() << '\n'
        << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

void makeClip(const QString& path, const QString& arguments)
{
    QStringList all{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    all += arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    all += path;
    (void)mediaTool(QStringLiteral("ffmpeg"), all);
}

QString probed(const QString& path, const QString& stream, const QString& entries)
{
    QStringList arguments{QStringLiteral("-v"), QStringLiteral("error")};
    if (!stream.isEmpty()) {
        arguments += {QStringLiteral("-select_streams"), stream};
    }
    arguments += {QStringLiteral("-show_entries"), entries, QStringLiteral("-of"), QStringLiteral("csv=p=0"), path};
    const QByteArray output = mediaTool(QStringLiteral("ffprobe"), arguments);
    return QString::fromUtf8(output).trimmed();
}

QStringList pictureSums(const QString& path)
{
    const QByteArray output =
        mediaTool(QStringLiteral("ffmpeg"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path, QStringLiteral("-map"),
                   QStringLiteral("0:v:0"), QStringLiteral("-vsync"), QStringLiteral("passthrough"),
                   QStringLiteral("-f"), QStringLiteral("framemd5"), QStringLiteral("-")});
    QStringList sums;
    const QStringList lines = QString::fromLatin1(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (!line.startsWith(QLatin1Char('#'))) {
            sums.append(line.section(QLatin1Char(','), -1).trimmed());
        }
    }
    return sums;
}

QList<qint16> soundSamples(const QString& path)
{
    const QByteArray output =
        mediaTool(QStringLiteral("ffmpeg"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path, QStringLiteral("-map"),
                   QStringLiteral("0:a:0"), QStringLiteral("-f"), QStringLiteral("s16le"), QStringLiteral("-")});
    QList<qint16> samples(output.size() / 2);
    for (qsizetype index = 0; index < samples.size(); ++index) {
        samples[index] = qFromLittleEndian<qint16>(output.constData() + 2 * index);
    }
    return samples;
}

bool decodesCleanly(const QString& path)
{
    QProcess process;
    process.setProgram(QStandardPaths::findExecutable(QStringLiteral("ffmpeg")));
    process.setArguments({QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path,
                          QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")});
    process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    const bool ended = process.waitForFinished(120000);
    const QByteArray errors = process.readAllStandardError();
    EXPECT_TRUE(errors.isEmpty()) << errors.toStdString();
    return ended && process.exitCode() == 0 && errors.isEmpty();
}

} // namespace tavrix::test
