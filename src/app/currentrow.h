// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The row that is being encoded, as the preferences store keeps it.

#include <QString>

namespace tavrix
{

class BatchList;

// Index of the row whose source is the current one; -1 when none is, as after a stop.
[[nodiscard]] int currentRowIndex(const BatchList& rows);
// A value of the current row's working record, "" when there is none.
[[nodiscard]] QString currentValue(const QString& key);
[[nodiscard]] float currentNumber(const QString& key);

} // namespace tavrix
