// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Presence, size, rights and free space. Paths have a leading tilde expanded; nothing is a missing path.

#include <QString>

namespace tavrix
{

// True when the path can be opened for reading, folders included. Never blocks on a FIFO; false for dangling links.
[[nodiscard]] bool testPresenceC(const QString& path);
[[nodiscard]] bool testPresenceCocoa(const QString& path);
// Size in the unit ("O": bytes; others as octet2unite); -1 for nothing, absent, unreadable, or a folder.
[[nodiscard]] double poidsFileC(const QString& path, const QString& unit);
// Size by the file's attributes (links followed), bytes for nothing or "O"/"o" as unit; -1 when unreadable.
[[nodiscard]] double poidsFile(const QString& path, const QString& unit);
// Sum of everything below the folder, in megabytes of 2^20 bytes; unreadable items count 0, links are not followed.
[[nodiscard]] double poidsFolderMo(const QString& path);
// Free megabytes of the volume that holds the path; 0 for nothing or on error.
[[nodiscard]] int espaceDiskDispo(const QString& path);
// True when the file can be opened for reading and writing.
[[nodiscard]] bool disponible(const QString& path);
// True for an existing folder; links to folders count.
[[nodiscard]] bool isFolder(const QString& path);
// True when both name the same file, by device and inode.
[[nodiscard]] bool isSameFile(const QString& a, const QString& b);

// Replaces espaceDiskDispo's answer in tests (megabytes); -1 removes the replacement.
void setFreeSpaceForTests(int megabytes);

} // namespace tavrix
