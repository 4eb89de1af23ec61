// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Listings and path names of sources. Listings are sorted by name (case-insensitively, then by code) and hold hidden
// entries; links to folders are not descended into.

#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix
{

// Direct entries as full paths; no value for nothing, empty for an unreadable folder.
[[nodiscard]] std::optional<QStringList> lsCocoa(const QString& folder);
// Everything below the folder at any depth, folders included; empty for nothing or an unreadable folder.
[[nodiscard]] QStringList lsCocoaRecursive(const QString& folder);
// Direct entries, links and folders included, whose names are no UTF-8 text and which no other listing can hold; with
// replacement characters, sorted. Empty for nothing or an unreadable folder.
[[nodiscard]] QStringList unspeakableEntries(const QString& folder);
// Direct entries with the extension in any case; "" or nothing asks for those without one.
[[nodiscard]] QStringList lsGrepCocoa(const QString& folder, const QString& extension);
// Files at any depth whose whole path, the folder's included, holds the pattern; the flag "i" ignores case. "" or
// nothing as pattern matches every file.
[[nodiscard]] QStringList findCocoa(const QString& folder, const QString& pattern, const QString& caseFlag);
// First direct entry with exactly that extension; "" when there is none.
[[nodiscard]] QString fileFromFolder(const QString& folder, const QString& extension);

[[nodiscard]] QString fichier_basename(const QString& path); // "" for nothing
// Name without extension of the file, or of the recording bundle it lies in; nothing for nothing.
[[nodiscard]] QString fichier_nom(const QString& path);
// Folder of the file, or of the recording bundle it lies in; ends with "/"; "" for nothing.
[[nodiscard]] QString fichier_dirname(const QString& path);
// A symbolic link's final target; otherwise, or when it dangles, the path itself.
[[nodiscard]] QString pathByResolvingAlias(const QString& path);
// The recording bundle when the path lies directly inside an ".eyetv" folder, else the path; nothing for nothing.
[[nodiscard]] QString EyetvBundle(const QString& path);

} // namespace tavrix
