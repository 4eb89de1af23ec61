// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as the tool's description of a source: what is accepted as a camera clip keeps within the limits.
#include "input.h"
#include "probe/cameraclip.h"
#include "probe/ffinfos.h"
#include "probe/ffprobes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const MediaInfoRecord found = recordFromBanner(text);
    const ClipVerdict verdict = cameraClipVerdict(found, QStringLiteral("p"));
    fuzz::require(verdict.accepted == verdict.reason.isNull());
    if (verdict.accepted) {
        const int width = found.value(record::v0_width).toInt();
        const int height = found.value(record::v0_height).toInt();
        fuzz::require(width > 0 && width <= 1280 && height > 0 && height <= 720);
    }
    const QString thumbnail = thumbnailSize(clipAspect(found));
    fuzz::require(thumbnail == QLatin1String("320x180") || thumbnail == QLatin1String("240x180"));
    static_cast<void>(clipDescription(found));
    static_cast<void>(interlacingLetter(text));
    static_cast<void>(ffRevisionFromBanner(text));
    static_cast<void>(ffmpegSuccess(text));
    static_cast<void>(forceFormatLite(text));
    return 0;
}
