// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/temphome.h"

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

// Generated clips, the tool under test, and what ffmpeg and ffprobe say of a movie.
namespace tavrix::test
{

struct ToolResult {
    int status = -1; // -1: not started, timed out or crashed
    QByteArray output;
    QByteArray errors;
};

[[nodiscard]] ToolResult runProgram(const QString& program, const QStringList& arguments,
                                    const std::function<void()>& inChild = {});
[[nodiscard]] QString movencoderPath();
// The shipped settings file of that name.
[[nodiscard]] QString settingsPath(const QString& name);
// Runs the tool; `format` is "" for none on the command line.
[[nodiscard]] ToolResult movencode(const QString& settings, const QString& format, const QString& input,
                                   const QString& output, const std::function<void()>& inChild = {});

// Runs ffmpeg with these arguments, which end with the file to make. True when it ends well.
[[nodiscard]] bool makeMedia(const QStringList& arguments);
// A camera-like H.264 recording (motion, noise, B-pictures) rewrapped as a QuickTime movie with PCM sound, time code,
// date and colour tags. 0 frames of sound are asked for by `sound` false.
[[nodiscard]] bool makeCameraMovie(const QString& path, int pictures, bool sound = true);

// Values of ffprobe for the first video stream, the container ("format.") and the first sound stream ("audio.");
// pictures are counted by decoding.
[[nodiscard]] QMap<QString, QString> probe(const QString& path);
// What `ffmpeg -f null` says about errors while it decodes everything.
[[nodiscard]] QByteArray decodeErrors(const QString& path);
// Average PSNR of two inputs, picture by picture, through a filter graph that uses [0:v] and [1:v]; 1000 for equal
// pictures, -1 when it cannot be had.
[[nodiscard]] double psnr(const QString& first, const QString& second, const QString& graph);
[[nodiscard]] QByteArray soundBytes(const QString& path);
[[nodiscard]] QStringList entriesOf(const QString& folder);

} // namespace tavrix::test
