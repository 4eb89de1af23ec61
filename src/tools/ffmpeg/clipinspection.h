// SPDX-License-Identifier: GPL-3.0-or-later
// What ffmpeg would say of a clip, its first packets and its first picture, told by this process.
#pragma once

#include <optional>
#include <string>

namespace tavrix::front
{

struct ClipInspection {
    std::string transcript; // classic lines, up to the output's first; with those of timestamp debugging
    std::string header;     // of the first picture as YUV4MPEG: one line with its end
};

// Whether the ffmpeg of this PATH stands on the libraries that this process has loaded, and these are known to say the
// same. Reads its file.
[[nodiscard]] bool canInspectClips();

// Nothing where something about the clip is unusual: then only ffmpeg itself can say what it would do. The libraries'
// messages are taken over meanwhile; one call at a time. It takes as long as the clip makes it.
[[nodiscard]] std::optional<ClipInspection> inspectClip(const std::string& path);

} // namespace tavrix::front
