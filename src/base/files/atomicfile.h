// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small files that appear whole, for texts of Qt.

#include "sys/result.h"

#include <QByteArray>
#include <QString>

namespace tavrix
{

// Replaces the file at once by a new one with these bytes and the mode 0600, after they have reached the disk. A link
// in its place is refused. The old file is untouched when it fails.
[[nodiscard]] Result<void, QString> replaceFileAtomically(const QString& path, const QByteArray& bytes);

} // namespace tavrix
