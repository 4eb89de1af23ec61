// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/vocabulary.h"

namespace tavrix
{

QList<float> standardsFpsArray()
{
    // Each broadcast rate follows its half rate.
    return {12.5F, 25.0F, 11.99F, 23.98F, 12.0F, 24.0F, 14.98F, 29.97F, 15.0F, 30.0F};
}

QStringList elementariesStreamsArray()
{
    return {QStringLiteral("m2v"), QStringLiteral("mpv"), QStringLiteral("m1v")};
}

QStringList multiplexedStreamsArray()
{
    return {QStringLiteral("mpg"), QStringLiteral("mpeg"), QStringLiteral("mod"), QStringLiteral("tod"),
            QStringLiteral("vob"), QStringLiteral("vro"),  QStringLiteral("ts")};
}

QStringList qtExtensionsHandledArray(const QString& kind)
{
    const bool digitalVideo = kind.toUpper() == QLatin1String("A");
    return {digitalVideo ? QStringLiteral("dv") : QStringLiteral("ffts"), QStringLiteral("mov"), QStringLiteral("3ivx"),
            QStringLiteral("unsupportedVideoCodecFfmpeg")};
}

} // namespace tavrix
