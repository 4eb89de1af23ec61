// SPDX-License-Identifier: GPL-3.0-or-later
// Small text operations that the line translators share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrix::front
{

// Splits at ", ", but not inside brackets or parentheses.
[[nodiscard]] std::vector<std::string> topLevelFields(std::string_view text);

// `text` without its parentheses and what they hold, nor the blank before them.
[[nodiscard]] std::string withoutParentheses(std::string_view text);

// Replaces every occurrence; an empty `from` replaces nothing.
[[nodiscard]] std::string replacedAll(std::string text, std::string_view from, std::string_view to);

// Bytes that are no UTF-8 become U+FFFD: a reader that decodes strictly would drop everything it read with them.
[[nodiscard]] std::string validUtf8(std::string_view text);

// Control characters shown as "\n", "\r" or "\xNN", so that a file name stays on one line.
[[nodiscard]] std::string onOneLine(std::string_view text);

// "#0:1" after "Stream ", "stream ", "Chapter " or "-> " becomes "#0.1".
[[nodiscard]] std::string withDottedNumbers(std::string_view text);

} // namespace tavrix::front
