// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The colour tags of the output: true to the pictures, and such as a QuickTime movie can express.

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace tavrix::movencoder
{

struct ColourTags {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;

    bool operator==(const ColourTags&) const = default;
};

// `height` is the source's and `outputHeight` the output's, in lines; `rgb` tells that the pictures become YCbCr on
// their way. Tags that stay unknown are left to the players, which go by the size.
[[nodiscard]] ColourTags outputTags(ColourTags source, int height, int outputHeight, bool rgb);

} // namespace tavrix::movencoder
