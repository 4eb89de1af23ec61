// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/colourtags.h"

namespace tavrix::movencoder
{

namespace
{

// Players take untagged pictures of this height and more for those of the high-definition standard.
constexpr int leastHighDefinitionHeight = 720;

bool isEuropean(int height)
{
    return height == 576 || height == 288;
}

// Numbers that a QuickTime movie does not have, in place of which others say the same.
void translate(ColourTags& tags)
{
    if (tags.matrix == AVCOL_SPC_BT470BG) {
        tags.matrix = AVCOL_SPC_SMPTE170M;
    }
    if (tags.transfer == AVCOL_TRC_SMPTE170M) {
        tags.transfer = AVCOL_TRC_BT709;
    }
}

// A tag alone is no use to a player that reads three numbers.
void complete(ColourTags& tags, int height)
{
    const bool highDefinition = tags.matrix == AVCOL_SPC_BT709;
    if (!highDefinition && tags.matrix != AVCOL_SPC_SMPTE170M) {
        return;
    }
    if (tags.primaries == AVCOL_PRI_UNSPECIFIED) {
        const AVColorPrimaries standard = isEuropean(height) ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
        tags.primaries = highDefinition ? AVCOL_PRI_BT709 : standard;
    }
    if (tags.transfer == AVCOL_TRC_UNSPECIFIED) {
        tags.transfer = AVCOL_TRC_BT709;
    }
}

} // namespace

ColourTags outputTags(ColourTags source, int height, int outputHeight, bool rgb)
{
    ColourTags tags = source;
    if (rgb) {
        // The converter uses this matrix; the pictures' own tag would say that there is none.
        tags.matrix = AVCOL_SPC_SMPTE170M;
    }
    // Untagged standard-definition pictures would change their colours by being enlarged, so they get their tag.
    const bool enlarged = height < leastHighDefinitionHeight && outputHeight >= leastHighDefinitionHeight;
    if (enlarged && tags.matrix == AVCOL_SPC_UNSPECIFIED) {
        tags.matrix = AVCOL_SPC_SMPTE170M;
    }
    translate(tags);
    complete(tags, height);
    return tags;
}

} // namespace tavrix::movencoder
