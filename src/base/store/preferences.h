// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The user's settings and the working state of the step machines, kept in memory and saved as an XML property list,
// "~/Library/Preferences/<identifier>.plist" (mode 0600, atomically), by a short delayed timer and by prefSynchronize.
// Main thread only. A damaged file is set aside as "<file>.damaged" and reads as no preferences.

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace tavrix
{

// The value as text ("%@" of it); "" when the key or its value is missing. Never nothing.
[[nodiscard]] QString prefRead(const QString& key);
// False when either is missing or the value has no property-list form.
bool prefWrite(const QString& key, const QVariant& value);
// Always true. Says in the log when the file lacks changes because the last save failed.
bool prefDelete(const QString& key);
[[nodiscard]] std::optional<QVariantMap> prefReadDico(const QString& key); // no value when missing or no dictionary
// Replaces the whole value; false, and nothing is removed, when an argument is missing.
bool prefWriteDico(const QString& key, const std::optional<QVariantMap>& dictionary);
// Text of the child's value; "" when the dictionary or the child is missing.
[[nodiscard]] QString prefReadChildDico(const QString& key, const QString& childKey);
// Makes the dictionary when there is none under the key; false when an argument is missing.
bool prefWriteChildDico(const QString& key, const QString& childKey, const QVariant& value);
bool prefDeleteChildDico(const QString& key, const QString& childKey); // always true

[[nodiscard]] QStringList prefAllKeys();
[[nodiscard]] QString preferencesPath();
// Writes pending changes at once; false when that failed (logged; the changes stay pending).
bool prefSynchronize();
// Forgets the memory (without saving) and reads the file again at the next use: a restart, for tests.
void prefReload();

} // namespace tavrix
