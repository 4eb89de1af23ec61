// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The system's words for its error numbers.

#include <string>

namespace tavrix
{

// The text for an error number such as errno, in English whatever the locale.
[[nodiscard]] std::string errorText(int number);

} // namespace tavrix
