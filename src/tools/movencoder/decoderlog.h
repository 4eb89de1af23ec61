#pragma once

// The FFmpeg libraries' messages: decoders are counted instead of printed, as a picture they complain about is kept.

#include <cstdint>

namespace tavrix::movencoder
{

// Once, before the libraries are used. Errors of containers and encoders still go to standard error.
void listenToDecoders();

// Pictures with parts that a decoder had to make up, in the whole process so far. The flag of a picture alone does not
// tell: with several threads the picture may be handed out before it is set.
[[nodiscard]] std::int64_t concealedPictures();

} // namespace tavrix::movencoder
