// SPDX-License-Identifier: GPL-3.0-or-later
// The lines that tell how far an encode is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

// Whether the line is one of the progress lines of ffmpeg ("frame=  250 fps= 35 ... time=00:00:10.00 ...").
[[nodiscard]] bool isProgressLine(std::string_view line);

// The progress line in its classic form, with the time in seconds: "frame=  250 fps= 35 q=3.0 Lsize=   32134kB
// time=10.00 bitrate=26324.3kbits/s    ". `knownTime` is the time to print when the line names none; it is brought up
// to date. Nothing for other lines.
[[nodiscard]] std::optional<std::string> classicProgressLine(std::string_view line, double& knownTime);

// The last line of a run, "video:30252kB audio:1878kB global headers:0kB muxing overhead 0.013261%", in its classic
// form; nothing for other lines.
[[nodiscard]] std::optional<std::string> classicSummaryLine(std::string_view line);

// Whether it is the last line of progress, with the size of the whole output.
[[nodiscard]] bool endsProgress(std::string_view line);

// Whether a progress line counts a picture.
[[nodiscard]] bool countsFrames(std::string_view line);

// Whether the summary says that no sound and hardly any picture was written: what is too little for a kilobyte is
// rounded to none.
[[nodiscard]] bool tellsNoContent(std::string_view line);

} // namespace tavrix::front
