// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which media library is in use.

#include "quicktime/model/medialibrary.h"

namespace tavrix
{

// Not owned; null returns to the FFmpeg libraries.
void setMediaLibrary(MediaLibrary* other);
// The library in use.
[[nodiscard]] MediaLibrary& mediaLibrary();

} // namespace tavrix
