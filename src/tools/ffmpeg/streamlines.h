// SPDX-License-Identifier: GPL-3.0-or-later
// The lines that describe a stream.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrix::front
{

struct StreamLineContext {
    bool ofOutput = false;
    bool showsIdentifiers = false; // of a transport or program stream: classic lines show "[0x1011]"
};

// "  Stream #0:0[0x1011]: Video: h264 (High) ([27][0][0][0] / 0x001B), yuv420p(progressive), ..." in its classic form:
// "    Stream #0.0[0x1011]: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], ...". Nothing for other lines.
[[nodiscard]] std::optional<std::string> classicStreamLine(std::string_view line, const StreamLineContext& context);

// The number of the stream described, within its file; nothing when the line describes none.
[[nodiscard]] std::optional<int> describedStream(std::string_view line);

// Whether a container of these names ("mov,mp4,m4a") has its stream identifiers in classic lines.
[[nodiscard]] bool formatShowsIdentifiers(std::string_view formatNames);

} // namespace tavrix::front
