// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The application's information property list and the places of its files.

#include <QString>
#include <QStringList>
#include <QVariant>

namespace tavrix
{

// Resource folder, without a trailing "/": the first that exists of <program folder>/../resources and
// <program folder>/../lib/tavrix. setResourcePath overrides it (tests) and forgets what was read from the old one.
[[nodiscard]] QString resourcePath();
void setResourcePath(const QString& folder);

// Value of a key of Info.plist in the resource folder; invalid when missing.
[[nodiscard]] QVariant infoValue(const QString& key);
[[nodiscard]] QString bundleName();       // CFBundleName, "Tavrix" when unreadable
[[nodiscard]] QString bundleIdentifier(); // CFBundleIdentifier
[[nodiscard]] QString bundleVersion();    // CFBundleShortVersionString
// CFBundleTypeExtensions of the first entry of CFBundleDocumentTypes; empty when unreadable.
[[nodiscard]] QStringList documentTypeExtensions();

// Path of a resource by name without extension and extension as type ("" or nothing: none): looked up in the resource
// folder, then in its "tools". Nothing when no regular file is there or the name holds a ".." component.
[[nodiscard]] QString pathForResource(const QString& name, const QString& type);
// "<resource folder>/tools", and "<resource folder>/tools/<name>", whether or not they exist.
[[nodiscard]] QString toolsFolder();
[[nodiscard]] QString toolPath(const QString& name);

[[nodiscard]] QString cachesFolder();  // "~/Library/Caches/<bundle name>", expanded, no trailing "/"
[[nodiscard]] QString supportFolder(); // "~/Library/Application Support/<bundle name>", expanded
[[nodiscard]] QString logsFolder();    // "~/Library/Logs/<bundle name>", expanded
// Private per-user folder for temporary files, ending with "/": $TMPDIR when it is the user's own and writable, else
// "/tmp/tavrix-<uid>", created with mode 0700, its owner checked, never a link. Nothing when it cannot be had.
[[nodiscard]] QString systemTemporaryFolder();
// Makes the folder with mode 0700 unless it is there. True when it is a real folder (no link), the user's own and
// closed to everybody else; its parent must exist.
[[nodiscard]] bool ensurePrivateFolder(const QString& path);

} // namespace tavrix
