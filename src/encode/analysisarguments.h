// SPDX-License-Identifier: GPL-3.0-or-later
// Argument lists of the two tool runs that look at a source.
#pragma once

#include <QStringList>

namespace tavrix
{

// Decodes the first ten pictures into a YUV4MPEG file; what the tool says meanwhile describes the source. Element 0 is
// the tool's path.
[[nodiscard]] QStringList decodeArguments(const QString& tool, const QString& source, const QString& frameFile);
// Makes one picture of the size "<width>x<height>".
[[nodiscard]] QStringList thumbnailArguments(const QString& tool, const QString& source, const QString& size,
                                             const QString& image);

} // namespace tavrix
