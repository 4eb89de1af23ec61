// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// When the sound of a movie begins.

#include <QVariantMap>

namespace tavrix
{

// The key a0_offset: the earliest start of a sound track in the movie, a 64-bit time value in the scale of that track's
// range. Empty when the file cannot be opened or has no sound. A leading tilde is expanded.
[[nodiscard]] QVariantMap qtOffsetMs(const QString& path);

} // namespace tavrix
