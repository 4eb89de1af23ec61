// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/progress.h"

#include "base/files/fileinfo.h"
#include "base/text/format.h"
#include "base/text/text.h"

namespace tavrix
{

namespace
{

// Inside backquotes inside double quotes no simple escaping holds, so such a log path is refused.
bool canStandInTemplate(const QString& logPath)
{
    for (const QChar character : logPath) {
        if (character == QLatin1Char('\\') || character == QLatin1Char('"') || character == QLatin1Char('$') ||
            character == QLatin1Char('`')) {
            return false;
        }
    }
    return !logPath.isNull();
}

} // namespace

float progresses(const QString& line, const QString& marker)
{
    const QString rest = textAfter(line, marker);
    return rest.isNull() ? 0.0F : static_cast<float>(floatPrefix(rest));
}

QString progressFfmpegGrepStr()
{
    return QStringLiteral("time=");
}

QString progressMov2wavMux2movGrepStr()
{
    return QStringLiteral("pourcentage    : ");
}

QString progressNormalizeGrepStr()
{
    return QStringLiteral("(batch ");
}

QString progressMovencoderGrepStr()
{
    return QStringLiteral("Processing (");
}

float progressFfmpeg(const QString& line)
{
    return progresses(line, progressFfmpegGrepStr());
}

float progressMov2wavMux2mov(const QString& line)
{
    return progresses(line, progressMov2wavMux2movGrepStr());
}

float progressMovencoder(const QString& line)
{
    return progresses(line, progressMovencoderGrepStr());
}

float progressNormalize(const QString& line)
{
    return progresses(line, progressNormalizeGrepStr());
}

QString progressMpeg2enc(const QString& logPath, float divisor, int divisor2)
{
    if (!canStandInTemplate(logPath)) {
        return {};
    }
    return formatText(
        QStringLiteral("/bin/echo \"scale=6; `/bin/cat \"%@\" | strings | grep Enc1 | grep q= | tail -1 | "
                       "/usr/bin/awk -F Enc1 '{print $2}' | /usr/bin/awk '{print $1}'` /%f /%d *100\" | bc "
                       "-l"),
        {logPath, static_cast<double>(divisor), divisor2});
}

QString progressMplayer(const QString& logPath, int divisor)
{
    if (!canStandInTemplate(logPath)) {
        return {};
    }
    return formatText(
        QStringLiteral("/bin/echo \"scale=6; `/bin/cat \"%@\"  | grep A: | strings | tail -1 | awk -F A:  "
                       "'{print $2}' | awk -F '(' '{print $1}' | awk  '{print $1}'` /%d * 100\" | bc -l"),
        {logPath, divisor});
}

float progressPoidsMo(const QString& path)
{
    return static_cast<float>(poidsFile(path, QStringLiteral("m")));
}

float progressValue(int selector, const QString& line)
{
    switch (selector) {
    case parseFfmpeg:
        return progressFfmpeg(line);
    case parseMov2wav:
        return progressMov2wavMux2mov(line);
    case parseMovencoder:
        return progressMovencoder(line);
    default:
        return progressSentinel;
    }
}

bool progressAccepted(float value, float maximum)
{
    return value > 0 && value <= maximum;
}

} // namespace tavrix
