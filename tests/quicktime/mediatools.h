// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tavrix::test
{

// Standard output of a media tool of the system (ffmpeg, ffprobe); fails the test when it ends with an error.
[[nodiscard]] QByteArray mediaTool(const QString& name, const QStringList& arguments);
// Makes a clip with ffmpeg: the arguments between the program and the output.
void makeClip(const QString& path, const QString& arguments);
// One value of ffprobe, for example "stream=width" of the stream "v:0"; "" when there is none.
[[nodiscard]] QString probed(const QString& path, const QString& stream, const QString& entries);
// Checksums of the decoded pictures, in order of display.
[[nodiscard]] QStringList pictureSums(const QString& path);
// The sound as 16-bit samples of the first sound stream at its own rate, interleaved.
[[nodiscard]] QList<qint16> soundSamples(const QString& path);
// True when the whole file decodes without one error line.
[[nodiscard]] bool decodesCleanly(const QString& path);

} // namespace tavrix::test
