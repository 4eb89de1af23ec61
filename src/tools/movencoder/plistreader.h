// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <plist/plist.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

// Reading of property lists, XML or binary, as plain values.
namespace tavrix::movencoder
{

struct PlistDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<std::remove_pointer_t<plist_t>, PlistDeleter>;

// Bytes; the preferences may hold a queue of ten thousand paths, and nothing sensible is larger than this.
inline constexpr std::uint32_t largestPropertyList = std::uint32_t{64} << 20;

// The dictionary at the top of a property list; null when the text is none.
[[nodiscard]] PlistPtr parseDictionary(const std::string& text);

[[nodiscard]] std::optional<std::string> textOf(plist_t node);
// An integer, or a text that is nothing but one; null nodes give nothing.
[[nodiscard]] std::optional<long long> integerOf(plist_t node);
[[nodiscard]] std::optional<bool> booleanOf(plist_t node);

} // namespace tavrix::movencoder
