// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/metadatalines.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace tavrix::front
{

namespace
{

constexpr std::array<std::string_view, 22> phrases = {
    "input #",
    "output #",
    "duration: ",
    "stream #",
    "audio: ",
    "video: ",
    "data: ",
    "at least one output",
    ": unknown format",
    ": i/o error",
    ": could not find",
    "unsupported video codec",
    "error while opening",
    "spectral extension attenuation",
    "av_read_packet stream=",
    "av_read_frame_internal stream=",
    "timestamp discontinuity",
    " time=",
    "processing (",
    "git-n-",
    "*** ",
    "av_interleaved_write",
};

} // namespace

bool isMetadataLine(std::string_view line)
{
    if (!line.starts_with("    ")) {
        return false;
    }
    const auto start = line.find_first_not_of(' ');
    const auto colon = line.find(": ");
    return start != std::string_view::npos && colon != std::string_view::npos && colon >= start;
}

std::string defusedMetadataLine(std::string_view line)
{
    std::string result(line);
    std::string lower(line);
    for (char& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const std::string_view phrase : phrases) {
        for (auto at = lower.find(phrase); at != std::string::npos; at = lower.find(phrase, at + 1)) {
            // Any one character changed breaks the phrase; a blank or a sign shows least.
            const auto place = std::min(phrase.find_first_of(" =-", 1), phrase.size() - 1);
            result[at + place] = '_';
        }
    }
    return result;
}

} // namespace tavrix::front
