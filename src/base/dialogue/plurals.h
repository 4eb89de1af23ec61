// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Texts that count something.

#include <QString>

namespace tavrix
{

// The text of the key in a table, or of "<key>_one" where the language says that number in the singular: 1, in French 0
// as well. The placeholder of the number stands in both.
[[nodiscard]] QString countedText(const char* key, qint64 number, const QString& table);

} // namespace tavrix
