// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Durations and numbers between tool output and the short texts of the batch list. Unreadable text gives 0 or 0.0; a
// time code that cannot be read also says so in an alert.

#include <QString>

namespace tavrix
{

// Numbers from text
[[nodiscard]] float str2Float(const QString& text);
[[nodiscard]] int str2Int(const QString& text); // truncates str2Float
[[nodiscard]] float timecodeStr2Float(const QString& text);
[[nodiscard]] float secondesCutStr2Float(const QString& text);

// Numbers to text
[[nodiscard]] QString secondesInt2Str(int seconds);
[[nodiscard]] int secondesStr2Int(const QString& text);
[[nodiscard]] int str2SecondesInt(const QString& text);
[[nodiscard]] QString secondesCutFloat2Str(float seconds);

} // namespace tavrix
