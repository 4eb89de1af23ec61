// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// String tables: <resources>/<language>.lproj/<table>.strings, `"key" = "value";` per line. A key that no table of the
// language holds is looked up in English and then yields itself. "Localized" is a second name of "Localizable": its own
// entries come first.

#include <QMap>
#include <QString>
#include <QStringList>

namespace tavrix
{

// Text of the key in a table; nothing as table means "Localizable". An empty key gives "".
[[nodiscard]] QString localizedString(const QString& key, const QString& table = QString());

// Languages that the resources hold ("en", "fr"), the one in force, and its choice. "" or an unknown language returns
// to the system's.
[[nodiscard]] QStringList availableLanguages();
[[nodiscard]] QString currentLanguage();
void setLanguage(const QString& language);
// The first of the wanted languages ("fr-CA", "fr") that is available, itself or its base language; "en" when none is.
[[nodiscard]] QString languageFor(const QStringList& wanted, const QStringList& available);

// Entries of a strings file's text. Comments, blank lines and malformed lines are skipped; \" \\ \n are understood.
[[nodiscard]] QMap<QString, QString> parseStringsTable(const QString& text);

// Where the tree localiser looks texts up: a resource folder ("" = the application's) and a table name.
void FVAutoLocalizeSetBundle(const QString& resourceFolder);
void FVAutoLocalizeSetName(const QString& table);
// The text for a marked text ("@@key"); unmarked texts are returned as they are.
[[nodiscard]] QString localizedMarkedText(const QString& text);

} // namespace tavrix
