// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the first bytes of a file tell.

#include <QString>

namespace tavrix
{

// First line of a file, at most 4096 bytes; nothing when the file cannot be read.
[[nodiscard]] QString firstLineOfFile(const QString& path);
// True when the file begins like a complete JPEG picture with a size.
[[nodiscard]] bool isJpegFile(const QString& path);

} // namespace tavrix
