// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/progress.h"

#include "sys/transfer.h"

#include <algorithm>
#include <unistd.h>

namespace tavrix::movencoder
{

std::string progressLine(int percent)
{
    return "Processing (" + std::to_string(percent) + "%)\n";
}

void Progress::print(int percent)
{
    // Nobody listening is no reason to stop: the movie is what counts.
    static_cast<void>(writeAll(STDOUT_FILENO, progressLine(percent)));
}

void Progress::report(double fraction)
{
    constexpr auto pause = std::chrono::milliseconds(500);
    const auto now = std::chrono::steady_clock::now();
    if (now - last_ < pause) {
        return;
    }
    last_ = now;
    print(static_cast<int>(std::clamp(fraction, 0.0, 0.99) * 100));
}

void Progress::complete()
{
    print(100);
}

} // namespace tavrix::movencoder
