// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Putting values into shell command texts so that any file name is data, while ordinary paths stay as they are.

#include "base/text/shellquoting.h"

#include <QString>

namespace tavrix
{

// For a slot between single quotes: ' becomes '\''.
[[nodiscard]] QString shellSingleQuoted(const QString& value);
// For a slot without quotes: as is when harmless or already quoted by the caller, else wrapped in single quotes.
[[nodiscard]] QString shellWord(const QString& value);

// True when the path can stand unquoted in a shell text; "|" alone is accepted. May ask the shell to echo it.
[[nodiscard]] bool pathSafeStr(const QString& path);

} // namespace tavrix
