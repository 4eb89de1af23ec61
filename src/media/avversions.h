// SPDX-License-Identifier: GPL-3.0-or-later
// What differs between the versions of the FFmpeg libraries, in one place.
#pragma once

#include "media/avowners.h"

#include <array>
#include <optional>
#include <string>

namespace tavrix::media
{

[[nodiscard]] int channelsOf(const AVCodecParameters& parameters);
// "stereo", "5.1", ...; "" when unknown.
[[nodiscard]] std::string layoutOf(const AVCodecParameters& parameters);
using DisplayMatrix = std::array<std::int32_t, 9>;
// a b u, c d v, x y w: x' = a x + c y + x, y' = b x + d y + y; nothing when the stream has none.
[[nodiscard]] std::optional<DisplayMatrix> displayMatrixOf(const AVStream& stream);
// The output stream gets what the input stream says beside its packets, the turning for example, after the parameters
// have been copied. 0, or an error of the libraries.
[[nodiscard]] int copySideData(const AVStream& from, AVStream& to);
// The index that the container brought or libavformat has made of it so far.
[[nodiscard]] int indexSize(AVStream& stream);
[[nodiscard]] const AVIndexEntry* indexEntry(AVStream& stream, int number);

} // namespace tavrix::media
