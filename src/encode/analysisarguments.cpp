// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/analysisarguments.h"

namespace tavrix
{

QStringList decodeArguments(const QString& tool, const QString& source, const QString& frameFile)
{
    return {tool,
            QStringLiteral("-v"),
            QStringLiteral("2"),
            QStringLiteral("-i"),
            source,
            QStringLiteral("-vframes"),
            QStringLiteral("10"),
            QStringLiteral("-s"),
            QStringLiteral("640x480"),
            QStringLiteral("-pix_fmt"),
            QStringLiteral("yuv420p"),
            QStringLiteral("-an"),
            QStringLiteral("-f"),
            QStringLiteral("yuv4mpegpipe"),
            QStringLiteral("-y"),
            frameFile};
}

QStringList thumbnailArguments(const QString& tool, const QString& source, const QString& size, const QString& image)
{
    // The picture count stands before the input: the tool knows this form.
    return {tool,
            QStringLiteral("-vframes"),
            QStringLiteral("1"),
            QStringLiteral("-i"),
            source,
            QStringLiteral("-s"),
            size,
            QStringLiteral("-y"),
            image};
}

} // namespace tavrix
