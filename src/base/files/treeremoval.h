// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Removing files and folder trees without ever following a link or crossing into a mounted volume.

#include <QByteArray>

namespace tavrix
{

// True when another volume (or a bind mount) is mounted on the item, or it is the root; links are not
// followed.
[[nodiscard]] bool isMountPoint(const QByteArray& path);

// Removes the item for good, a folder with all it holds. False when something stays (errno tells why); a mounted volume
// below stops it.
[[nodiscard]] bool removeTree(const QByteArray& path);

} // namespace tavrix
