// SPDX-License-Identifier: GPL-3.0-or-later
// Filter descriptions of the classic dialect.
#pragma once

#include <string>
#include <string_view>

namespace tavrix::front
{

// The filter description in the installed dialect: quotes around the whole go, "setdar=16:9" becomes "setdar=16/9" (the
// second number is an unrelated option there, which gives a picture nine times as wide as high), and the classic names
// of the aspect filters become the installed ones.
[[nodiscard]] std::string installedFilters(std::string_view description);

// Both in this order; either may be empty.
[[nodiscard]] std::string joinedFilters(const std::string& first, const std::string& second);

} // namespace tavrix::front
