#pragma once

#include <QString>
#include <QStringList>

// Copying, moving, linking, folders, modes and dates. A leading tilde is expanded.
namespace tavrix
{

// False when the source does not exist, or the destination exists and the flag is not exactly "y". Otherwise true, also
// when the copy or move itself fails (it is logged): test presence afterwards. Source and destination being the same
// file leaves it alone and answers true.
bool cpCocoa(const QString& source, const QString& destination, const QString& overwriteFlag);
bool mvCocoa(const QString& source, const QString& destination, const QString& overwriteFlag);
bool ln_sCocoa(const QString& source, const QString& linkPath);
[[nodiscard]] QString srcFromLn(const QString& linkPath); // nothing when it is no link
// Creates the folder with its parents; an existing one is success.
bool mkdirCocoa(const QString& path);
bool chmodCocoa(const QString& path, int mode, const QString& recursiveFlag);
// True when a folder can be made in the path (a folder) or in its parent.
[[nodiscard]] bool droitsAcces(const QString& path);
// "yyyy-MM-dd HH:mm:ss +hhmm" of the earlier of birth and modification time; nothing for nothing or a missing file.
[[nodiscard]] QString dateCreation(const QString& path);

} // namespace tavrix
