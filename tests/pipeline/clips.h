// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

// Clips made by the installed ffmpeg, and what ffprobe says of files.
namespace tavrix::test
{

// Runs a program to its end; false when it failed.
bool runTool(const QString& program, const QStringList& arguments, QByteArray* output = nullptr);

struct ClipRequest {
    QString size = QStringLiteral("1280x720");
    QString rate = QStringLiteral("60000/1001");
    double seconds = 6;
    QStringList codecs; // options of the output
};
// False when the clip could not be made.
bool makeClip(const QString& path, const ClipRequest& request);
[[nodiscard]] ClipRequest avchdLiteClip();  // H.264 and AC-3 for a transport stream
[[nodiscard]] ClipRequest motionJpegClip(); // 640x480 Motion-JPEG with PCM for AVI
[[nodiscard]] ClipRequest smallMotionJpegClip();
[[nodiscard]] ClipRequest interlacedClip();
[[nodiscard]] ClipRequest fullHdClip();

// ffprobe's JSON for the file: {"streams": [...], "format": {...}}; empty when it fails.
[[nodiscard]] QJsonObject probed(const QString& path);
// First stream of the type ("video", "audio").
[[nodiscard]] QJsonObject streamOf(const QJsonObject& probe, const QString& type);
[[nodiscard]] double secondsOf(const QJsonObject& object, const char* key);

} // namespace tavrix::test
