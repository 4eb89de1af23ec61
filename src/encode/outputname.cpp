// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/outputname.h"

#include "base/text/format.h"
#include "base/text/listconversions.h"
#include "base/text/paths.h"
#include "encode/encoderarguments.h"

namespace tavrix
{

namespace
{

constexpr qsizetype maximumNameBytes = 255;

} // namespace

QString eventsFolder(const QString& destinationText)
{
    return stringByAppendingPathComponent(stringByExpandingTildeInPath(destinationText), eventsFolderName);
}

QString outputName(const QString& baseName, int out, const QString& codec)
{
    const QString extension = encDstExtensionStr(out, codec);
    return formatText(QStringLiteral("%@.%@"), {fittedBaseName(baseName, extension), extension});
}

QString outputPath(const QString& destinationText, const QString& baseName, int out, const QString& codec)
{
    return formatText(QStringLiteral("%@/%@"), {eventsFolder(destinationText), outputName(baseName, out, codec)});
}

QString fittedBaseName(const QString& base, const QString& extension)
{
    const qsizetype room = maximumNameBytes - extension.toUtf8().size() - 1;
    QString fitted = base;
    while (fitted.toUtf8().size() > room) {
        const bool pair = fitted.size() > 1 && fitted.back().isLowSurrogate();
        fitted.chop(pair ? 2 : 1);
    }
    return fitted;
}

QString intermediateName(const QString& output)
{
    return oldSrcPathStr2DstPathStr(output);
}

} // namespace tavrix
