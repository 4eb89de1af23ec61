// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Where users have their files.

#include <string>

namespace tavrix
{

// $HOME when it is absolute, else what the user database says; "" when that knows none either.
[[nodiscard]] std::string ownHome();

// Home folder of the named user in the user database, of this process's user for ""; "" when there is none.
[[nodiscard]] std::string homeOfUser(const std::string& name);

} // namespace tavrix
