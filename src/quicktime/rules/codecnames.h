// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Codec names of tracks, in ffmpeg's style.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// The code's four bytes as text, zero bytes as ".". Nothing when a byte is not ASCII.
[[nodiscard]] QString fourCharText(quint32 code);
// The track's code as text; "raw" when its description cannot be read, or for a Flash track.
[[nodiscard]] QString sampleFormatText(const QString& mediaType, const SampleDescription& description);
// Name for a code of four characters, which is lower-cased first; an unknown one is kept in lower case.
[[nodiscard]] QString videoCodecName(const QString& code);
// The same for sound.
[[nodiscard]] QString audioCodecName(const QString& code);

} // namespace tavrix
