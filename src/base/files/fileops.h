// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Copying, moving, linking, folders, modes and dates. A leading tilde is expanded.

#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix
{

// False when the source does not exist, or the destination exists and the flag is not exactly "y". Otherwise true, also
// when the copy or move itself fails (it is logged): test presence afterwards. Nothing is removed or written when both
// are the same file or one holds the other; the answer is true then as well.
bool cpCocoa(const QString& source, const QString& destination, const QString& overwriteFlag);
bool mvCocoa(const QString& source, const QString& destination, const QString& overwriteFlag);
// Symbolic link at linkPath to the source, which need not exist. False, with a log line, when it cannot be made.
bool ln_sCocoa(const QString& source, const QString& linkPath);
[[nodiscard]] QString srcFromLn(const QString& linkPath); // as the link holds it; nothing when it is no link
// Creates the folder with its parents; an existing one is success. False, with a log line, otherwise.
bool mkdirCocoa(const QString& path);
// The decimal number 777 gives the mode 0777, any other 0755. The flag "R" is only logged. False only for nothing.
bool chmodCocoa(const QString& path, int mode, const QString& recursiveFlag);
// True when a folder can be made in the path (a folder) or in its parent.
[[nodiscard]] bool droitsAcces(const QString& path);
// "yyyy-MM-dd HH:mm:ss +hhmm" of the earlier of birth and modification time; nothing for nothing or a missing file.
[[nodiscard]] QString dateCreation(const QString& path);
// The same in seconds since 1970; no value for nothing or a missing file.
[[nodiscard]] std::optional<qint64> creationSeconds(const QString& path);
// Sets a regular file's modification time, seconds since 1970; a link is not followed. False, with a log line, when it
// cannot be set.
bool setModificationTime(const QString& path, qint64 seconds);

} // namespace tavrix
