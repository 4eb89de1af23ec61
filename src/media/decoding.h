// SPDX-License-Identifier: GPL-3.0-or-later
// Decoding of a clip's pictures, to see which of them can be. It is slow and done where something is doubtful.
#pragma once

#include "media/mediainput.h"
#include "media/reading.h"

#include <cstdint>

namespace tavrix::media
{

// Times are seconds as libavformat tells them, less the clip's origin.
struct DecodedPictures {
    std::int64_t shown = 0; // that came out, damaged ones included
    Flaws damaged = {};     // of them, those that lack parts or stand on others that do
    Flaws lost = {};        // packets that gave none
    // Before the first picture without damage: what a recording that starts in the middle of a group begins with. It is
    // in neither of the counts above.
    std::int64_t shownBefore = 0;
    std::int64_t lostBefore = 0;
    double first = 0;
    double last = 0;      // of the last picture that came out
    double lastWhole = 0; // of the last one without damage
};

// Decodes the whole stream, on one thread, since several lose marks of damage. The reason of a failure is that of the
// opening, or that there is no decoder.
// Of a part, if one is given, only what is shown there counts.
[[nodiscard]] Result<DecodedPictures> decodePictures(const OpenRequest& request, int stream,
                                                     const std::optional<Span>& part = std::nullopt);

// In the place of a stream's number: the one with the pictures, where there is only one.
inline constexpr int anyPicture = -1;

struct DecodedEnds {
    bool first = false;
    bool last = false;
};

// Decodes the first picture, and the last ones from the last key picture on, at most `mostPackets` of them: a longer
// group counts as good when its key picture is. Nothing hidden by an edit list is looked at.
[[nodiscard]] Result<DecodedEnds> decodeEnds(const OpenRequest& request, int stream, int mostPackets = 120);

} // namespace tavrix::media
