// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The words of the controller's alerts.

#include "base/dialogue/localisation.h"

namespace tavrix
{

// Text of a key of the main table.
[[nodiscard]] inline QString alertText(const char* key)
{
    return localizedString(QLatin1String(key));
}

} // namespace tavrix
