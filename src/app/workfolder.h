// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The folder for the temporary files of a run.

#include <QString>
#include <QStringList>

namespace tavrix
{

// Frames of an analysis and its listing need this much, in bytes.
inline constexpr qint64 workFolderNeeds = qint64{8} * 1024 * 1024;

struct WorkFolder {
    QString path;          // ends with "/"; nothing when no place could be had
    QStringList obstacles; // what stood in the way at the places that were tried before: the path and why
};

// Makes an empty private folder: below the base, which ends with "/" or is nothing, else at other places that are the
// user's own. `shared`: another copy works below the base, and its folder must stay.
[[nodiscard]] WorkFolder makeWorkFolder(const QString& base, bool shared);

// Why no temporary file can be written to the folder, in the user's language; nothing when one can.
[[nodiscard]] QString workFolderTrouble(const QString& folder);

} // namespace tavrix
