// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/errorlines.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tavrix::front
{

namespace
{

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

std::optional<int> numberBehind(std::string_view line, std::string_view head)
{
    const auto at = line.find(head);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = line.substr(at + head.size());
    int number = 0;
    const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    return result.ec == std::errc() ? std::optional<int>(number) : std::nullopt;
}

} // namespace

std::optional<std::string> classicOpenFailure(std::string_view reason)
{
    struct Row {
        std::string_view installed;
        std::string_view classic;
    };
    constexpr std::array rows = {
        Row{"Invalid data found when processing input", "Unknown format"},
        Row{"End of file", "Unknown format"},
        Row{"could not find codec parameters", "could not find codec parameters"},
        Row{"Input/output error", "I/O error occured"},
        Row{"Cannot allocate memory", "memory allocation error occured"},
        Row{"No such file or directory", "No such file or directory"},
    };
    const auto* const row = std::ranges::find(rows, reason, &Row::installed);
    if (row != rows.end()) {
        return std::string(row->classic);
    }
    constexpr std::array<std::string_view, 10> others = {
        "Operation not permitted",  "Permission denied",   "Is a directory",
        "Not a directory",          "Protocol not found",  "No such device or address",
        "Invalid argument",         "Too many open files", "Too many levels of symbolic links",
        "Immediate exit requested",
    };
    if (std::ranges::find(others, reason) == others.end()) {
        return std::nullopt;
    }
    return "Error while opening file (" + std::string(reason) + ')';
}

std::optional<OpenFailure> laterOpenFailure(std::string_view line)
{
    constexpr std::string_view head = "[in#";
    if (!line.starts_with(head)) {
        return std::nullopt;
    }
    const auto input = numberBehind(line, head);
    constexpr std::string_view bareReason = "could not find codec parameters";
    if (input && line.ends_with("] " + std::string(bareReason))) {
        return OpenFailure{static_cast<std::size_t>(*input), std::string(bareReason)};
    }
    for (const std::string_view marker : {"] Error opening input: ", "] Error during demuxing: "}) {
        const auto at = line.find(marker);
        if (input && at != std::string_view::npos) {
            return OpenFailure{static_cast<std::size_t>(*input), std::string(line.substr(at + marker.size()))};
        }
    }
    return std::nullopt;
}

bool tellsReadFailure(std::string_view reason)
{
    constexpr std::array<std::string_view, 9> reasons = {
        "Input/output error",
        "Remote I/O error",
        "Stale file handle",
        "No such device",
        "No such device or address",
        "No medium found",
        "Transport endpoint is not connected",
        "Connection timed out",
        "Cannot allocate memory",
    };
    return std::ranges::find(reasons, reason) != reasons.end();
}

bool repeatsOpenFailure(std::string_view line)
{
    return line.starts_with("Error opening input file ") || line.starts_with("Error opening input files: ");
}

std::optional<std::string> refusedOption(std::string_view line)
{
    constexpr std::string_view head = "Unrecognized option '";
    if (!line.starts_with(head)) {
        return std::nullopt;
    }
    line.remove_prefix(head.size());
    return std::string(line.substr(0, line.find('\'')));
}

bool refusesAnnexB(std::string_view line)
{
    return contains(line, "is not supported by the bitstream filter 'h264_mp4toannexb'");
}

bool tellsWriteFailure(std::string_view line)
{
    // Indented lines hold what the clip says of itself.
    if (line.starts_with(' ')) {
        return false;
    }
    constexpr std::array<std::string_view, 10> phrases = {
        "Error writing trailer",
        "Error closing file",
        "No space left on device",
        "av_interleaved_write_frame",
        "Error muxing",
        "Error submitting a packet to the muxer",
        "Conversion failed!",
        "File too large",
        "Disk quota exceeded",
        "Could not write header for output file",
    };
    return std::ranges::any_of(phrases, [&](std::string_view phrase) { return contains(line, phrase); });
}

bool tellsDecodeError(std::string_view line)
{
    if (line.starts_with(' ')) {
        return false;
    }
    constexpr std::array<std::string_view, 5> phrases = {
        "Error while decoding stream #",
        "corrupt decoded frame",
        "Error submitting packet to decoder",
        "concealing ",
        "Decode error rate ",
    };
    return std::ranges::any_of(phrases, [&](std::string_view phrase) { return contains(line, phrase); });
}

bool tellsNothingEncoded(std::string_view line)
{
    return contains(line, "Output file is empty, nothing was encoded") ||
           contains(line, "Output file does not contain any");
}

std::optional<int> streamWithoutParameters(std::string_view line)
{
    return line.starts_with('[') ? numberBehind(line, "] Could not find codec parameters for stream ") : std::nullopt;
}

bool tellsMissingIndex(std::string_view line)
{
    return line.starts_with("[mov,") && line.ends_with("] moov atom not found");
}

bool tellsUndecodable(std::string_view line)
{
    return line.starts_with("Cannot determine format of input ") ||
           (line.starts_with('[') && contains(line, "] Cannot determine format of input "));
}

bool tellsForeignFormat(std::string_view line)
{
    return line.starts_with('[') && contains(line, "] Format not on whitelist ");
}

bool tellsOldPixelFormat(std::string_view line)
{
    return line.starts_with("[swscaler @ ") && contains(line, "] deprecated pixel format used");
}

} // namespace tavrix::front
