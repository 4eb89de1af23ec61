#pragma once

#include "quicktime/medialibrary.h"

namespace tavrix
{

// Not owned; null returns to the FFmpeg libraries.
void setMediaLibrary(MediaLibrary* library);
[[nodiscard]] MediaLibrary& mediaLibrary();

} // namespace tavrix
