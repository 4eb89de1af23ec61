// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small questions put to ffmpeg about a source or about itself. None reports to the user: false, 0 or nothing.

#include <QString>
#include <QStringList>

namespace tavrix
{

[[nodiscard]] int ffRevisionInt(); // revision of the tool's banner, 0 without "git-N-"
[[nodiscard]] int ffRevisionFromBanner(const QString& banner);
[[nodiscard]] bool ffmpegSuccess(const QString& text); // false for nothing, "" and texts that name a failure
[[nodiscard]] QString forceFormatLite(const QString& text);
[[nodiscard]] QString forceFormat(const QString& path, const QString& text); // nothing = no forcing
[[nodiscard]] QString forceFormatFromAnswer(const QString& fileAnswer, const QString& text);
[[nodiscard]] bool ffmpegSuccessAudioCodec(const QString& path);
[[nodiscard]] int durationM2v(const QString& path); // whole seconds
[[nodiscard]] bool mpegTs(const QString& path, const QString& text);
[[nodiscard]] bool ffmpegVsync(const QString& path, const QString& text, const QString& forcedFormat);
[[nodiscard]] QStringList ffAspectArgs(const QString& aspect); // two elements, by the tool's revision
[[nodiscard]] QStringList ffAspectArgs(const QString& aspect, int revision);
// One text when asString ("-aspect 16:9"), else the list; the revision is asked anew at every call.
[[nodiscard]] QStringList ffAspect(const QString& aspect, bool asString);
[[nodiscard]] QString interlacedYuvheadersArgsStr(const QString& path); // the caller supplies the path quoted
[[nodiscard]] QStringList interlacedYuvheadersArgs(const QString& path);
[[nodiscard]] QString interlacedYuvheaders2tvxStr(const QString& letter); // "TFF", "BFF" or "PFF"
[[nodiscard]] QStringList ffYuvInputArray();
[[nodiscard]] QStringList ffYuvOutputArray();

// Command texts, filled in; pure.
[[nodiscard]] QString durationM2vCommand(const QString& ffmpeg, const QString& path);
[[nodiscard]] QString mpegTsCommand(const QString& ffmpeg, const QString& path);
[[nodiscard]] QString ffmpegVsyncCommand(const QString& ffmpeg, const QString& path, const QString& forcedFormat);
[[nodiscard]] QString audioCodecCommand(const QString& ffmpeg, const QString& path, const QString& capture,
                                        const QString& format);

} // namespace tavrix
