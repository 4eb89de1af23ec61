// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The words for sources and rows that come to nothing.

#include "base/dialogue/localisation.h"

namespace tavrix
{

// Text of the table that says why a source makes no row and why a row failed.
[[nodiscard]] inline QString batchText(const char* key)
{
    return localizedString(QLatin1String(key), QStringLiteral("Batch"));
}

} // namespace tavrix
