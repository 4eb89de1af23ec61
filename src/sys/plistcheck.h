// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which property lists may be handed to the library that reads them: it ends the program at a NUL inside a text, and
// overflows the stack on lists in lists in lists.

#include "sys/result.h"

#include <string_view>

namespace tavrix
{

enum class PlistForm { Xml, Binary };

// The form of a property list that is safe to read; what else is wrong with it the library will tell. It fails for
// other bytes, for a NUL inside a text, and for values nested more than 64 deep or shared so often that they would
// become millions.
[[nodiscard]] Result<PlistForm> checkedPlist(std::string_view bytes);

} // namespace tavrix
