// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Numbers from the progress lines of the tools.
namespace tavrix
{

// The number after the first occurrence of the marker, or 0.
[[nodiscard]] float progresses(const QString& line, const QString& marker);
[[nodiscard]] float progressFfmpeg(const QString& line);         // seconds reached
[[nodiscard]] float progressMov2wavMux2mov(const QString& line); // percent
[[nodiscard]] float progressMovencoder(const QString& line);     // percent
[[nodiscard]] float progressNormalize(const QString& line);
[[nodiscard]] QString progressFfmpegGrepStr();
[[nodiscard]] QString progressMov2wavMux2movGrepStr();
[[nodiscard]] QString progressNormalizeGrepStr();
[[nodiscard]] QString progressMovencoderGrepStr();
// Shell commands that compute a percentage from a tool's log; nothing for no log path or one with \ " $ or a backquote.
[[nodiscard]] QString progressMpeg2enc(const QString& logPath, float divisor, int divisor2);
[[nodiscard]] QString progressMplayer(const QString& logPath, int divisor);
[[nodiscard]] float progressPoidsMo(const QString& path); // megabytes, -1 when missing or nothing

// Parser selectors of a running encode.
inline constexpr int parseFfmpeg = 0;
inline constexpr int parseMov2wav = 2;
inline constexpr int parseMovencoder = 4;
// Larger than any real maximum: never accepted as progress.
inline constexpr float progressSentinel = 123456792.0F;
// The value that the selector's parser finds in the line; the sentinel for any other selector.
[[nodiscard]] float progressValue(int selector, const QString& line);
// A value counts when it is above 0 and not above the maximum.
[[nodiscard]] bool progressAccepted(float value, float maximum);

} // namespace tavrix
