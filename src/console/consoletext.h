// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The words of the console.

#include "base/dialogue/localisation.h"
#include "base/text/format.h"

namespace tavrix
{

// Text of a key of the console's own table.
[[nodiscard]] inline QString consoleText(const char* key)
{
    return localizedString(QLatin1String(key), QStringLiteral("Console"));
}

// Short name of an output format: the window's.
[[nodiscard]] inline QString shortFormatName(int out)
{
    return localizedString(formatText(QStringLiteral("Win_format%d"), {out}), QStringLiteral("Window"));
}

} // namespace tavrix
