// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Values as people write them, in the language in force.

#include <QString>

namespace tavrix
{

// With the language's decimal sign and that many decimals.
[[nodiscard]] QString shownDecimal(double value, int decimals);
// As `clipTimeText`, with the language's decimal sign.
[[nodiscard]] QString shownClipTime(double seconds);
// "204 kB", "2.9 MB", "36 MB", "1.2 GB", in units of 1000; below 0 counts as 0.
[[nodiscard]] QString shownSize(qint64 bytes);
// Date and time in the short form of the user's region, where that speaks the language, else of the language. Seconds
// since 1970; "" for a time that no calendar reaches.
[[nodiscard]] QString shownDate(qint64 secondsSince1970);

} // namespace tavrix
