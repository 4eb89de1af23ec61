// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The media info record: a flat dictionary that describes one source. A missing key means unknown.

#include "sys/secondpass.h"

#include <QString>
#include <QVariantMap>

namespace tavrix
{

using MediaInfoRecord = QVariantMap;

namespace record
{
inline const QString wrapper = QStringLiteral("wrapper");       // container name, text
inline const QString w_duration = QStringLiteral("w_duration"); // seconds, int
inline const QString w_offset = QStringLiteral("w_offset");     // seconds, float
inline const QString w_bitrate = QStringLiteral("w_bitrate");   // kb/s, int
inline const QString w_width = QStringLiteral("w_width");       // pixels, int
inline const QString w_height = QStringLiteral("w_height");     // pixels, int
inline const QString w_dar = QStringLiteral("w_dar");           // text N:M
inline const QString w_qtasync = QStringLiteral("w_qtasync");   // 1 when the size is not known yet
inline const QString w_nsav = QStringLiteral("w_nsav");         // bool, the movie refuses to be saved
inline const QString v0_width = QStringLiteral("v0_width");     // pixels, int
inline const QString v0_height = QStringLiteral("v0_height");   // pixels, int
inline const QString v0_codec = QStringLiteral("v0_codec");     // codec name, text
inline const QString v0_fps = QStringLiteral("v0_fps");         // frames per second, float
// Mean pictures per second, float; 0 when they are not even. Missing where v0_fps tells them.
inline const QString v0_meanRate = QStringLiteral("v0_meanRate");
inline const QString v0_aspect = QStringLiteral("v0_aspect"); // display aspect chosen for the source, float
inline const QString a0_offset = QStringLiteral("a0_offset"); // time value in the track's own scale, qint64
inline const QString mainEncSrcPathStr = QStringLiteral("mainEncSrcPathStr"); // full path of the source
inline const QString imgPathStr = QStringLiteral("imgPathStr");               // full path of the thumbnail
inline const QString out = QString::fromLatin1(secondpass::format);           // output format, int
inline const QString dstPathStr = QString::fromLatin1(secondpass::output);    // output file of the row being encoded
inline const QString purgePathStr1 = QString::fromLatin1(secondpass::intermediate); // intermediate of the second pass
inline const QString recordingDate = QStringLiteral("recordingDate"); // "yyyy-MM-dd HH:mm:ss +hhmm", local time
inline const QString recordingDateSource = QStringLiteral("recordingDateSource"); // where it was found: dateSource

// Keys of numbered streams: stream('v', 0, "fps") is "v0_fps".
[[nodiscard]] inline QString stream(char kind, int number, const char* name)
{
    return QLatin1Char(kind) + QString::number(number) + QLatin1Char('_') + QLatin1String(name);
}
} // namespace record

} // namespace tavrix
