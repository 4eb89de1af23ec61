#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// Listings and path names of sources. Listings are sorted by name (case-insensitively, then by code) and hold hidden
// entries; links to folders are not descended into.
namespace tavrix
{

// Direct entries as full paths; no value for nothing, empty for an unreadable folder.
[[nodiscard]] std::optional<QStringList> lsCocoa(const QString& folder);
[[nodiscard]] QStringList lsCocoaRecursive(const QString& folder);
[[nodiscard]] QStringList lsGrepCocoa(const QString& folder, const QString& extension);
[[nodiscard]] QStringList findCocoa(const QString& folder, const QString& pattern, const QString& caseFlag);
[[nodiscard]] QString fileFromFolder(const QString& folder, const QString& extension); // "" when there is none

[[nodiscard]] QString fichier_basename(const QString& path); // "" for nothing
[[nodiscard]] QString fichier_nom(const QString& path);      // nothing for nothing
[[nodiscard]] QString fichier_dirname(const QString& path);  // ends with "/"; "" for nothing
// A symbolic link's final target; otherwise, or when it dangles, the path itself.
[[nodiscard]] QString pathByResolvingAlias(const QString& path);
// The recording bundle when the path lies directly inside an ".eyetv" folder, else the path; nothing for nothing.
[[nodiscard]] QString EyetvBundle(const QString& path);

} // namespace tavrix
