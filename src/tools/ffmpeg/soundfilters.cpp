// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/soundfilters.h"

namespace tavrix::front
{

std::string twoChannelFilters(const media::StreamFacts& sound)
{
    if (sound.channels == 1) {
        // ffmpeg would give each side 0.7 of it. The left and right of a recording that turns to stereo stay apart.
        return "pan=stereo|FL=FC+FL|FR=FC+FR";
    }
    if (sound.channels < 3) {
        return {};
    }
    // The usual weights, with channels that a source lacks left out. ffmpeg would weaken all of them for outputs of
    // whole numbers and let those of floating point run over; here the few peaks that run over are held back instead.
    return "aformat=sample_fmts=fltp,"
           "pan=stereo|FL=FL+FLC+0.7071*FC+0.7071*SL+0.7071*BL+0.5*BC|FR=FR+FRC+0.7071*FC+0.7071*SR+0.7071*BR+0.5*BC,"
           "alimiter=level=0:limit=0.98:attack=1:release=50";
}

} // namespace tavrix::front
