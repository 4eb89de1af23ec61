// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/stepflags.h"

#include "app/settingstable.h"
#include "base/store/preferences.h"
#include "base/text/text.h"

namespace tavrix
{

qint64 silenceLimit(const QString& setting)
{
    constexpr qint64 millisecondsPerSecond = 1000;
    return storedNumber(setting) * millisecondsPerSecond;
}

QStringList analysisFlags()
{
    return {pref::analysisFfmpeg, pref::analysisFfmpegParse, pref::analysisFin};
}

QStringList encodeFlags()
{
    return {stepBatch, pref::encDeb, pref::encPart, pref::encQtEnc, pref::encFin};
}

bool isFlagSet(const QString& name)
{
    return leadingInteger(prefRead(name)) == 1;
}

void setFlag(const QString& name)
{
    prefWrite(name, 1);
}

bool takeFlag(const QString& name)
{
    if (!isFlagSet(name)) {
        return false;
    }
    prefDelete(name);
    return true;
}

} // namespace tavrix
