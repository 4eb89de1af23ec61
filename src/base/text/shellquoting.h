// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Values inside the quotes of shell texts.

#include <QString>

namespace tavrix
{

// A value for a slot between double quotes of a shell text: a backslash before \ " $ and the backquote, so that any
// file name is data. Ordinary names stay as they are; nothing gives nothing.
[[nodiscard]] QString shellDoubleQuoted(const QString& value);

} // namespace tavrix
