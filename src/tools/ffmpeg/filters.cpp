// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/filters.h"

#include <cctype>
#include <vector>

namespace tavrix::front
{

namespace
{

std::string_view unquoted(std::string_view text)
{
    const bool quoted =
        text.size() >= 2 && (text.front() == '\'' || text.front() == '"') && text.back() == text.front();
    if (!quoted || text.substr(1, text.size() - 2).find(text.front()) != std::string_view::npos) {
        return text;
    }
    return text.substr(1, text.size() - 2);
}

bool isDigits(std::string_view text)
{
    for (const char c : text) {
        if (std::isdigit(static_cast<unsigned char>(c)) == 0) {
            return false;
        }
    }
    return !text.empty();
}

std::string installedFilter(std::string_view filter)
{
    const auto equals = filter.find('=');
    const std::string_view name = filter.substr(0, equals);
    std::string_view installed;
    if (name == "setdar" || name == "aspect") {
        installed = "setdar";
    } else if (name == "setsar" || name == "pixelaspect") {
        installed = "setsar";
    }
    if (installed.empty() || equals == std::string_view::npos) {
        return std::string(filter);
    }
    const std::string_view ratio = filter.substr(equals + 1);
    const auto colon = ratio.find(':');
    std::string result = std::string(installed) + '=';
    if (colon != std::string_view::npos && isDigits(ratio.substr(0, colon)) && isDigits(ratio.substr(colon + 1))) {
        return result + std::string(ratio.substr(0, colon)) + '/' + std::string(ratio.substr(colon + 1));
    }
    return result + std::string(ratio);
}

} // namespace

std::string joinedFilters(const std::string& first, const std::string& second)
{
    return first.empty() || second.empty() ? first + second : first + ',' + second;
}

std::string installedFilters(std::string_view description)
{
    description = unquoted(description);
    std::string result;
    std::size_t begin = 0;
    bool quoted = false;
    for (std::size_t i = 0; i <= description.size(); ++i) {
        const bool atEnd = i == description.size();
        if (!atEnd && description[i] == '\'') {
            quoted = !quoted;
        }
        const bool separator = atEnd || (!quoted && (description[i] == ',' || description[i] == ';') &&
                                         (i == 0 || description[i - 1] != '\\'));
        if (!separator) {
            continue;
        }
        result += installedFilter(description.substr(begin, i - begin));
        if (!atEnd) {
            result += description[i];
        }
        begin = i + 1;
    }
    return result;
}

} // namespace tavrix::front
