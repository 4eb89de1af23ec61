// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Deleting, with the guards that keep volumes, homes and wildcard texts out of reach. Links are never followed.

#include <QString>

#include <functional>

namespace tavrix
{

// True when the item is gone (or never was). Refused: nothing, an item directly in the root, texts that begin with a
// wildcard, paths with "." or ".." components, the home folder and its ancestors, mount points. Names that are not
// plain URL text go to the trash instead of being removed.
bool rmCocoa(const QString& path);
// Is told the expanded path after every rmCocoa that ends well, also when there was nothing to remove: file viewers
// have to look again. An empty function removes it.
void setDeletionObserver(std::function<void(const QString& path)> observer);
// Always true; the outcome is the item's absence. Homes, volumes and paths with "." or ".." components stay.
bool moveToTrash(const QString& path);

// Removes one of the program's own intermediates for good: only a regular file strictly inside `folder`, both compared
// after resolving the folder; anything else is refused (false). Absence is success.
bool removeOwnFile(const QString& path, const QString& folder);
// Removes the program's own temporary folder with all it holds; refused for a link or a folder of another user.
bool removeOwnFolder(const QString& path);

} // namespace tavrix
