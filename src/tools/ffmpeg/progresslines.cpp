// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/progresslines.h"

#include "tools/ffmpeg/textpieces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tavrix::front
{

namespace
{

// The text behind "key=", up to the next blank; nothing when the key is absent.
std::optional<std::string> valueOf(std::string_view line, std::string_view key)
{
    const std::string needle = std::string(key) + '=';
    auto at = line.find(needle);
    while (at != std::string_view::npos && at > 0 && line[at - 1] != ' ') {
        at = line.find(needle, at + 1);
    }
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view rest = line.substr(at + needle.size());
    const auto begin = rest.find_first_not_of(' ');
    if (begin == std::string_view::npos) {
        return std::nullopt;
    }
    rest.remove_prefix(begin);
    return std::string(rest.substr(0, rest.find(' ')));
}

double numberIn(const std::optional<std::string>& text)
{
    if (!text) {
        return 0;
    }
    const double value = std::strtod(text->c_str(), nullptr);
    return std::isfinite(value) && value != 0 ? value : 0; // no negative zero
}

// Seconds of "00:01:02.50" or "62.50"; nothing for "N/A" and what has more parts than hours, minutes and seconds.
std::optional<double> seconds(const std::string& text)
{
    if (text.find_first_of("0123456789") == std::string::npos || std::ranges::count(text, ':') > 2) {
        return std::nullopt;
    }
    if (text.front() == '-') {
        return 0.0; // before the first frame
    }
    double total = 0;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const auto colon = std::min(text.find(':', begin), text.size());
        total = total * 60 + numberIn(text.substr(begin, colon - begin));
        begin = colon + 1;
    }
    return std::isfinite(total) ? std::optional(total) : std::nullopt;
}

template <class... Values> std::string printed(const char* format, Values... values)
{
    // A number may have hundreds of digits, and what stands behind it must not be lost.
    const int length = std::snprintf(nullptr, 0, format, values...);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::snprintf(text.data(), text.size() + 1, format, values...);
    return text;
}

} // namespace

bool isProgressLine(std::string_view line)
{
    const bool head = line.starts_with("frame=") || line.starts_with("size=") || line.starts_with("Lsize=");
    return head && line.find(" time=") != std::string_view::npos && line.find(" bitrate=") != std::string_view::npos;
}

std::optional<std::string> classicProgressLine(std::string_view line, double& knownTime)
{
    if (!isProgressLine(line)) {
        return std::nullopt;
    }
    std::string result;
    if (line.starts_with("frame=")) {
        result = printed("frame=%5.0f fps=%3.0f ", numberIn(valueOf(line, "frame")), numberIn(valueOf(line, "fps")));
        if (const auto quality = valueOf(line, "q")) {
            result += printed("q=%3.1f ", numberIn(quality));
        }
    }
    const auto finalSize = valueOf(line, "Lsize");
    const auto size = finalSize ? finalSize : valueOf(line, "size");
    const auto time = valueOf(line, "time");
    if (const auto value = time ? seconds(*time) : std::nullopt) {
        knownTime = *value;
    }
    result += printed("%ssize=%8.0fkB time=%0.2f bitrate=%6.1fkbits/s", finalSize ? "L" : "", numberIn(size), knownTime,
                      numberIn(valueOf(line, "bitrate")));
    const double repeated = numberIn(valueOf(line, "dup"));
    const double dropped = numberIn(valueOf(line, "drop"));
    if (repeated > 0 || dropped > 0) {
        result += printed(" dup=%.0f drop=%.0f", repeated, dropped);
    }
    return result + "    ";
}

bool endsProgress(std::string_view line)
{
    return isProgressLine(line) && valueOf(line, "Lsize").has_value();
}

bool countsFrames(std::string_view line)
{
    return isProgressLine(line) && numberIn(valueOf(line, "frame")) > 0;
}

bool tellsNoContent(std::string_view line)
{
    const auto summary = classicSummaryLine(line);
    return summary && summary->starts_with("video:0kB audio:0kB ") && summary->ends_with("muxing overhead unknown") &&
           line.find(" subtitle:0") != std::string_view::npos &&
           line.find(" other streams:0") != std::string_view::npos;
}

std::optional<std::string> classicSummaryLine(std::string_view line)
{
    const auto start = line.starts_with("[out#") ? line.find("] video:") : std::string_view::npos;
    if (start != std::string_view::npos) {
        line.remove_prefix(start + 2);
    }
    if (!line.starts_with("video:") || line.find(" muxing overhead") == std::string_view::npos) {
        return std::nullopt;
    }
    std::string text = replacedAll(std::string(line), "KiB", "kB");
    text = replacedAll(text, "muxing overhead: ", "muxing overhead ");
    // The two counts that came later are between "audio:" and "global headers:".
    const auto from = text.find(" subtitle:");
    const auto to = text.find(" global headers:");
    if (from != std::string::npos && to != std::string::npos && from < to) {
        text.erase(from, to - from);
    }
    return text;
}

} // namespace tavrix::front
