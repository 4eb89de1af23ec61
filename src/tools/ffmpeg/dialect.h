// SPDX-License-Identifier: GPL-3.0-or-later
// What the installed dialect differs in, and what the installed ffmpeg says when it was started in the wrong one.
#pragma once

#include "tools/ffmpeg/clipsource.h"
#include "tools/ffmpeg/findings.h"

namespace tavrix::front
{

// The default is that of most versions and clips.
struct InstalledDialect {
    bool annexBFilter = true;   // false: h264_mp4toannexb is left out, for a stream that is not H.264
    bool frameRateMode = false; // -fps_mode instead of -vsync, which versions after 7 do not know
    bool mirrors = true;        // false: a mirrored picture is only turned, by versions before 5

    bool operator==(const InstalledDialect&) const = default;
};

// What a start of the installed ffmpeg has told, and what it was started on.
struct ToldByStart {
    const Findings& findings;
    const Source& source;
    bool inputCanBeReadAgain = true;
};

// The dialect that a start in the default one should have been in; the default where nothing speaks against it.
[[nodiscard]] InstalledDialect dialectAfter(const ToldByStart& told);

} // namespace tavrix::front
