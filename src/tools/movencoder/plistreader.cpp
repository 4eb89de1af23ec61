// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/plistreader.h"

#include "sys/plistversions.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace tavrix::movencoder
{

PlistPtr parseDictionary(const std::string& text)
{
    static_assert(largestPropertyList <= std::numeric_limits<std::uint32_t>::max());
    plist_t node = nullptr;
    if (text.size() >= 8) {
        readPlist(text.data(), static_cast<std::uint32_t>(text.size()), &node);
    }
    PlistPtr list(node);
    if (list && plist_get_node_type(list.get()) != PLIST_DICT) {
        list.reset();
    }
    return list;
}

std::optional<std::string> textOf(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING) {
        return std::nullopt;
    }
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return text == nullptr ? std::string() : std::string(text, static_cast<std::size_t>(length));
}

std::optional<long long> integerOf(plist_t node)
{
    if (node != nullptr && plist_get_node_type(node) == PLIST_UINT) {
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return static_cast<long long>(value);
    }
    const auto text = textOf(node);
    long long value = 0;
    if (!text || text->empty()) {
        return std::nullopt;
    }
    const auto [end, problem] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (problem != std::errc() || end != text->data() + text->size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> booleanOf(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_BOOLEAN) {
        return std::nullopt;
    }
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

} // namespace tavrix::movencoder
