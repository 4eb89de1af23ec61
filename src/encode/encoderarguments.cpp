// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/encoderarguments.h"

#include "base/bundle/bundle.h"
#include "base/text/log.h"
#include "encode/outputformats.h"

namespace tavrix
{

std::optional<QStringList> encodage(const QString& sourcePath, const QString& destinationPath, const QString& wrapper,
                                    const QString& /*codec*/, float framesPerSecond, int out, float aspect)
{
    logLine(QStringLiteral("encodage            - deb"));
    logDebug(QStringLiteral("srcPathStr          : %@"), {sourcePath});
    logDebug(QStringLiteral("dstPathStr          : %@"), {destinationPath});
    logDebug(QStringLiteral("outInt              : %d"), {out});
    if (sourcePath.isNull() || destinationPath.isNull()) {
        return std::nullopt;
    }
    const EncodeJob job = {sourcePath, destinationPath, wrapper, framesPerSecond, aspect};
    QStringList arguments = {
        toolPath(QStringLiteral("ffmpeg")), QStringLiteral("-v"), QStringLiteral("1"), QStringLiteral("-i"), job.source,
        QStringLiteral("-vsync"),           QStringLiteral("0")};
    outputFormat(out).addArguments(arguments, job);
    logDev(QStringLiteral("argsArray fin       : %@"), {arguments});
    logLine(QStringLiteral("encodage - fin"));
    return arguments;
}

QString encDstExtensionStr(int out, const QString& codec)
{
    return outputFormat(out).extension(codec);
}

float encDstPoidsEstimatif(float duration, double sourceSize, int out)
{
    const float narrowed =
        static_cast<float>(outputFormat(out).spaceEstimate(static_cast<double>(duration), sourceSize));
    logLine(QStringLiteral("encDstPoidsEstimatif= %f"), {static_cast<double>(narrowed)});
    return narrowed;
}

} // namespace tavrix
