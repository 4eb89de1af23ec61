// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Rules for paths as texts. Runs of "/" count as one and a trailing one is ignored. Nothing gives nothing unless
// stated.

#include <QString>

namespace tavrix
{

// "/tmp/" gives "tmp", "/" gives "/", "" gives "".
[[nodiscard]] QString lastPathComponent(const QString& path);
// "/x" gives "/", "foo" gives "", "/" gives "/".
[[nodiscard]] QString stringByDeletingLastPathComponent(const QString& path);
// After the last dot of the last component, unless that dot is its first character; "" when there is none.
[[nodiscard]] QString pathExtension(const QString& path);
[[nodiscard]] QString stringByDeletingPathExtension(const QString& path);
// Exactly one "/" between the two; an empty part adds nothing.
[[nodiscard]] QString stringByAppendingPathComponent(const QString& path, const QString& component);
// Leading "~" or "~user" replaced; any other text unchanged, also its trailing "/".
[[nodiscard]] QString stringByExpandingTildeInPath(const QString& path);
// Tilde, "//", "/./" and a trailing "/" resolved; ".." in absolute paths only; a leading "/private" dropped when the
// rest exists.
[[nodiscard]] QString stringByStandardizingPath(const QString& path);
// $HOME when it is absolute, else the user database's entry, else "/". No trailing "/".
[[nodiscard]] QString homeFolder();
// Bytes of the path for a system call; none for a path with a NUL, which the system would read only in part.
[[nodiscard]] QByteArray nativePath(const QString& path);

} // namespace tavrix
