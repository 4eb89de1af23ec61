// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as timestamp-debugging output: at most four sound tracks, and only offsets that matter.
#include "input.h"
#include "probe/streamoffsets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QVariantMap offsets = ptsDtsOffsetMs(text);
    for (const QVariant& offset : offsets) {
        fuzz::require(std::abs(offset.toDouble()) > 30);
    }
    for (const char* mode : {"streamCopy", ""}) {
        fuzz::require(offsetTracksFromTranscript(text, QLatin1String(mode)).size() <= 4);
    }
    return 0;
}
