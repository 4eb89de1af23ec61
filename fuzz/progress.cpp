// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as progress of a tool, and its first bytes as a maximum: what counts is above 0 and not above it.
#include "encode/progress.h"

#include "input.h"
#include "tools/ffmpeg/progresslines.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    fuzz::Input input(data, size);
    const auto maximum = static_cast<float>(input.number()) / 100.0F;
    const std::string line(input.text());
    const QString text = QString::fromStdString(line);
    for (int selector = -1; selector <= 5; ++selector) {
        const float value = progressValue(selector, text);
        fuzz::require(!progressAccepted(value, maximum) || (value > 0 && value <= maximum));
    }
    double known = 1.5;
    const auto classic = front::classicProgressLine(line, known);
    fuzz::require(classic.has_value() == front::isProgressLine(line));
    if (classic) {
        fuzz::require(std::isfinite(known));
        fuzz::require(progressFfmpeg(QString::fromStdString(*classic)) >= 0 || known < 0);
    }
    static_cast<void>(front::classicSummaryLine(line));
    static_cast<void>(front::endsProgress(line));
    static_cast<void>(front::countsFrames(line));
    static_cast<void>(front::tellsNoContent(line));
    return 0;
}
