// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The FFmpeg libraries' messages: they are not printed, as the tool has words of its own, but those of decoders count.

#include <cstdint>

namespace tavrix::movencoder
{

// Once, before the libraries are used.
void listenToDecoders();

// Pictures with parts that a decoder had to make up, in the whole process so far. The flag of a picture alone does not
// tell: with several threads the picture may be handed out before it is set.
[[nodiscard]] std::int64_t concealedPictures();

} // namespace tavrix::movencoder
