// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/textpieces.h"

#include <array>
#include <cctype>
#include <cstdint>

namespace tavrix::front
{

namespace
{

bool isDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The length of the valid UTF-8 sequence at the start of `text`, 0 when there is none.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned char>(text[i]);
    };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80) {
            return 0;
        }
    }
    const bool overlong = (first == 0xe0 && byte(1) < 0xa0) || (first == 0xf0 && byte(1) < 0x90);
    const bool surrogate = first == 0xed && byte(1) > 0x9f;
    const bool tooLarge = first == 0xf4 && byte(1) > 0x8f;
    return overlong || surrogate || tooLarge ? 0 : length;
}

} // namespace

std::vector<std::string> topLevelFields(std::string_view text)
{
    std::vector<std::string> fields;
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '(' || c == '[') {
            ++depth;
        } else if ((c == ')' || c == ']') && depth > 0) {
            --depth;
        } else if (c == ',' && depth == 0 && i + 1 < text.size() && text[i + 1] == ' ') {
            fields.emplace_back(text.substr(begin, i - begin));
            begin = i + 2;
        }
    }
    fields.emplace_back(text.substr(begin));
    return fields;
}

std::string withoutParentheses(std::string_view text)
{
    std::string kept;
    int depth = 0;
    for (const char c : text) {
        if (c == '(') {
            if (depth++ == 0) {
                while (kept.ends_with(' ')) {
                    kept.pop_back();
                }
            }
        } else if (c == ')' && depth > 0) {
            --depth;
        } else if (depth == 0) {
            kept += c;
        }
    }
    return kept;
}

std::string replacedAll(std::string text, std::string_view from, std::string_view to)
{
    if (from.empty()) {
        return text;
    }
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string validUtf8(std::string_view text)
{
    std::string valid;
    valid.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            valid += "\xef\xbf\xbd";
        } else {
            valid += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

std::string onOneLine(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            line += "\\n";
        } else if (c == '\r') {
            line += "\\r";
        } else if (byte < 0x20 || byte == 0x7f) {
            line += std::string("\\x") + digits[byte >> 4] + digits[byte & 15];
        } else {
            line += c;
        }
    }
    return line;
}

std::string withDottedNumbers(std::string_view text)
{
    constexpr std::array<std::string_view, 4> heads = {"tream #", "hapter #", "-> #", "Program #"};
    std::string result(text);
    for (const std::string_view head : heads) {
        for (auto at = result.find(head); at != std::string::npos; at = result.find(head, at + head.size())) {
            auto i = at + head.size();
            const auto begin = i;
            while (i < result.size() && isDigit(result[i])) {
                ++i;
            }
            if (i > begin && i + 1 < result.size() && result[i] == ':' && isDigit(result[i + 1])) {
                result[i] = '.';
            }
        }
    }
    return result;
}

} // namespace tavrix::front
