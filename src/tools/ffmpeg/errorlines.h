// SPDX-License-Identifier: GPL-3.0-or-later
// Failures, in the classic dialect and as facts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

// The classic words for the reason why an input could not be opened or read ("Unknown format" for "Invalid data found
// when processing input"); nothing for a text that names no such reason.
[[nodiscard]] std::optional<std::string> classicOpenFailure(std::string_view reason);

// An input's number, and why it could not be opened or read.
struct OpenFailure {
    std::size_t input = 0;
    std::string reason;
};
// The failure in "[in#0 @ 0x55] Error opening input: <reason>" of later versions, or in "[in#0/mpegts @ 0x55] could not
// find codec parameters" of version 7; nothing for other lines.
[[nodiscard]] std::optional<OpenFailure> laterOpenFailure(std::string_view line);

// Whether an input's failure is one of its disk, device or network, and not of the clip: what stands behind that place
// is then missing in the output, and ffmpeg ends with status 0 all the same.
[[nodiscard]] bool tellsReadFailure(std::string_view reason);

// Lines that only repeat a failure already told in classic words.
[[nodiscard]] bool repeatsOpenFailure(std::string_view line);

// The option that the installed ffmpeg does not know; nothing for other lines.
[[nodiscard]] std::optional<std::string> refusedOption(std::string_view line);

// Whether the line says that the bitstream filter h264_mp4toannexb cannot take the stream.
[[nodiscard]] bool refusesAnnexB(std::string_view line);

// Whether the line tells that the output is damaged, which ffmpeg may follow with status 0.
[[nodiscard]] bool tellsWriteFailure(std::string_view line);

// Whether the line tells of a frame that could not be decoded, or only in part.
[[nodiscard]] bool tellsDecodeError(std::string_view line);

// Whether the line tells that no frame went into the output, which is status 0 as well.
[[nodiscard]] bool tellsNothingEncoded(std::string_view line);

// The number of the stream whose parameters were not found; nothing for other lines.
[[nodiscard]] std::optional<int> streamWithoutParameters(std::string_view line);

// A movie's header, which says where everything is, comes last: a recording that was not finished lacks it.
[[nodiscard]] bool tellsMissingIndex(std::string_view line);

// Whether a line tells that a stream ended without a picture or sound that could be decoded.
[[nodiscard]] bool tellsUndecodable(std::string_view line);

// Whether a line tells that the input's format is none of those handled.
[[nodiscard]] bool tellsForeignFormat(std::string_view line);

// Whether a line is the scaler's remark on the pixel formats of JPEG pictures, one for each of its threads.
[[nodiscard]] bool tellsOldPixelFormat(std::string_view line);

} // namespace tavrix::front
