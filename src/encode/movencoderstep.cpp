// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/movencoderstep.h"

#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/preferences.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "encode/outputname.h"
#include "probe/aspectclass.h"
#include "probe/mediainforecord.h"
#include "sys/secondpass.h"

namespace tavrix
{

namespace
{

const QString encodeDictionary = QString::fromLatin1(secondpass::record);

constexpr double missingSize = -1;

// False when the volume cannot hold the second pass. The first pass's output has been moved away by then: its size is
// normally that of a missing file, and only counts when the move has failed.
bool enoughSpace(const QString& intermediatePath, double size, float duration)
{
    const int available = espaceDiskDispo(intermediatePath);
    const float necessary = static_cast<float>(static_cast<double>(duration) * (11.0 / 60.0) + size);
    logLine(QStringLiteral("encDstPoidsEstimatif= %f"), {static_cast<double>(necessary)});
    logLine(QStringLiteral("necessary=%.0f ? available=%d"), {static_cast<double>(necessary), available});
    return !(necessary > static_cast<float>(available));
}

QString movencoderSettings(const QString& settingsName, float aspect)
{
    return settingsName.isEmpty() ? movencoderSettingsName(aspect) : settingsName;
}

std::optional<QStringList> argumentsIfItFits(const QString& outputPath, double size, float duration,
                                             const QString& settings)
{
    const QString intermediate = intermediateName(outputPath);
    if (!enoughSpace(intermediate, size, duration)) {
        return std::nullopt;
    }
    const QString presets = stringByAppendingPathComponent(resourcePath(), QStringLiteral("presets"));
    const QStringList arguments = {toolPath(QStringLiteral("movencoder")), QStringLiteral("-s"),
                                   stringByAppendingPathComponent(presets, settings), intermediate, outputPath};
    logDev(QStringLiteral("movencoder - fin : %@"), {arguments});
    prefWriteChildDico(encodeDictionary, record::dstPathStr, outputPath);
    prefWriteChildDico(encodeDictionary, record::purgePathStr1, intermediate);
    // The tool reads these values from the file.
    if (!prefSynchronize()) {
        logLine(QStringLiteral("encQt()             :-( %@"), {preferencesPath()});
    }
    logLine(QStringLiteral("encQt()             - fin"));
    return arguments;
}

} // namespace

QString movencoderSettingsName(float aspect)
{
    const bool narrow = aspectClass(aspect) == AspectClass::Classic;
    return narrow ? QStringLiteral("1280x720pLetterbox") : QStringLiteral("1280x720p");
}

std::optional<QStringList> encPostQtEnc(const QString& outputPath, float duration, float aspect,
                                        const QString& settingsName)
{
    logLine(QStringLiteral("encQt()             - deb"));
    if (!mvCocoa(outputPath, intermediateName(outputPath), QStringLiteral("y"))) {
        logLine(QStringLiteral("encQt()             :-( %@"), {outputPath});
    }
    const double size = poidsFile(outputPath, QStringLiteral("m"));
    return argumentsIfItFits(outputPath, size, duration, movencoderSettings(settingsName, aspect));
}

std::optional<QStringList> secondPassArguments(const QString& outputPath, float duration, float aspect,
                                               const QString& settingsName)
{
    logLine(QStringLiteral("encQt()             - deb"));
    // What stands under the output's name is of another encode: it counts as little as a file that has moved away.
    return argumentsIfItFits(outputPath, missingSize, duration, movencoderSettings(settingsName, aspect));
}

} // namespace tavrix
