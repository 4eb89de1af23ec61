#pragma once

// Dates as the texts and logs show them.

#include <QString>

namespace tavrix
{

// "yyyy-MM-dd HH:mm:ss +hhmm" in local time, whole seconds. Nothing for a time no calendar reaches.
[[nodiscard]] QString dateText(qint64 secondsSince1970);
// The same of this moment.
[[nodiscard]] QString currentDateText();

} // namespace tavrix
