#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

// The user's settings and the working state of the step machines, kept in memory and saved as an XML property list
// under
// "~/Library/Preferences/<identifier>.plist" (mode 0600, atomically) by a short delayed timer and by prefSynchronize.
// Main thread only. A damaged file is set aside as "<file>.damaged" and reads as no preferences.
namespace tavrix
{

// The value as text ("%@" of it); "" when the key or its value is missing. Never nothing.
[[nodiscard]] QString prefRead(const QString& key);
bool prefWrite(const QString& key, const QVariant& value);                 // false when either is missing
bool prefDelete(const QString& key);                                       // always true
[[nodiscard]] std::optional<QVariantMap> prefReadDico(const QString& key); // no value when missing or no dictionary
bool prefWriteDico(const QString& key, const std::optional<QVariantMap>& dictionary);
[[nodiscard]] QString prefReadChildDico(const QString& key, const QString& childKey);
bool prefWriteChildDico(const QString& key, const QString& childKey, const QVariant& value);
bool prefDeleteChildDico(const QString& key, const QString& childKey);

[[nodiscard]] QStringList prefAllKeys();
[[nodiscard]] QString preferencesPath();
// Writes pending changes at once; false when that failed (logged; the changes stay pending).
bool prefSynchronize();
// Forgets the memory (without saving) and reads the file again at the next use: a restart, for tests.
void prefReload();

} // namespace tavrix
