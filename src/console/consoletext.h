#pragma once

// The words of the console.

#include "base/localisation.h"

namespace tavrix
{

// Text of a key of the console's own table.
[[nodiscard]] inline QString consoleText(const char* key)
{
    return localizedString(QLatin1String(key), QStringLiteral("Console"));
}

} // namespace tavrix
