// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/settings.h"

#include "aic/encoder.h"
#include "sys/transfer.h"
#include "tools/movencoder/plistreader.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrix::movencoder
{

namespace
{

constexpr std::array<std::string_view, 4> profileNames{"proxy", "lt", "standard", "hq"};

struct Section {
    plist_t node;
    Format format;

    [[nodiscard]] Failure<std::string> fail(std::string_view key, std::string_view problem) const
    {
        return Failure{std::string("section ") + std::to_string(static_cast<int>(format)) + ": \"" + std::string(key) +
                       "\" " + std::string(problem)};
    }
    // `value` stays when the key is missing.
    Result<void> number(const char* key, long long least, long long most, int& value) const
    {
        plist_t item = plist_dict_get_item(node, key);
        if (item == nullptr) {
            return {};
        }
        const auto found = integerOf(item);
        if (!found || *found < least || *found > most) {
            return fail(key, "must be a number from " + std::to_string(least) + " to " + std::to_string(most));
        }
        value = static_cast<int>(*found);
        return {};
    }
};

std::vector<std::string> keysOf(plist_t dictionary)
{
    std::vector<std::string> keys;
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(dictionary, &iterator);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(dictionary, iterator, &key, &value);
        if (key == nullptr) {
            break;
        }
        keys.emplace_back(key);
        std::free(key);
    }
    std::free(iterator);
    return keys;
}

Result<void> knownKeysOnly(const Section& section)
{
    const bool intermediate = section.format == Format::AppleIntermediate;
    for (const std::string& key : keysOf(section.node)) {
        const bool common = key == "width" || key == "height" || key == "letterbox";
        const bool own = intermediate ? key == "quantiser" || key == "bytesPerFrame" : key == "profile";
        if (!common && !own) {
            return section.fail(key, "is not known");
        }
    }
    return {};
}

Result<void> readGeometry(const Section& section, FormatSettings& settings)
{
    for (const auto& [key, side] : {std::pair{"width", &settings.width}, std::pair{"height", &settings.height}}) {
        if (auto read = section.number(key, aic::smallestSide, aic::largestSide, *side); !read) {
            return read;
        }
    }
    if ((settings.width == 0) != (settings.height == 0)) {
        return section.fail(settings.width == 0 ? "width" : "height", "is missing beside the other side");
    }
    if (settings.width % 2 != 0 || settings.height % 2 != 0) {
        return section.fail(settings.width % 2 != 0 ? "width" : "height", "must be even");
    }
    if (plist_t item = plist_dict_get_item(section.node, "letterbox")) {
        const auto letterbox = booleanOf(item);
        if (!letterbox) {
            return section.fail("letterbox", "must be true or false");
        }
        settings.letterbox = *letterbox;
    }
    return {};
}

Result<void> readQuality(const Section& section, FormatSettings& settings)
{
    constexpr long long leastBytes = 1000;
    constexpr long long mostBytes = 100'000'000;
    if (auto read = section.number("quantiser", aic::finestQuantiser, aic::coarsestQuantiser, settings.quantiser);
        !read) {
        return read;
    }
    if (auto read = section.number("bytesPerFrame", leastBytes, mostBytes, settings.bytesPerFrame); !read) {
        return read;
    }
    if (settings.bytesPerFrame > 0 && plist_dict_get_item(section.node, "quantiser") != nullptr) {
        return section.fail("bytesPerFrame", "stands beside \"quantiser\"; only one of them can rule");
    }
    if (plist_t item = plist_dict_get_item(section.node, "profile")) {
        const auto name = textOf(item);
        int profile = 0;
        for (const std::string_view known : profileNames) {
            if (name == known) {
                settings.profile = profile;
                return {};
            }
            ++profile;
        }
        return section.fail("profile", "must be proxy, lt, standard or hq");
    }
    return {};
}

Result<void> readSection(plist_t root, Format format, std::optional<FormatSettings>& settings)
{
    plist_t node = plist_dict_get_item(root, std::to_string(static_cast<int>(format)).c_str());
    if (node == nullptr) {
        return {};
    }
    const Section section{node, format};
    if (plist_get_node_type(node) != PLIST_DICT) {
        return Failure{"section " + std::to_string(static_cast<int>(format)) + " is not a dictionary"};
    }
    settings.emplace();
    if (auto known = knownKeysOnly(section); !known) {
        return known;
    }
    if (auto read = readGeometry(section, *settings); !read) {
        return read;
    }
    return readQuality(section, *settings);
}

} // namespace

std::optional<Format> formatOfNumber(long long number)
{
    if (number == static_cast<int>(Format::AppleIntermediate)) {
        return Format::AppleIntermediate;
    }
    if (number == static_cast<int>(Format::ProRes)) {
        return Format::ProRes;
    }
    return std::nullopt;
}

const char* formatName(Format format)
{
    return format == Format::AppleIntermediate ? "Apple Intermediate Codec" : "Apple ProRes 422";
}

Result<Settings> parseSettings(const std::string& text)
{
    const PlistPtr list = parseDictionary(text);
    if (!list) {
        return Failure{"not a property list with a dictionary"};
    }
    for (const std::string& key : keysOf(list.get())) {
        if (key != "default" && key != "4" && key != "5") {
            return Failure{"\"" + key + "\" is not known"};
        }
    }
    Settings settings;
    if (auto read = readSection(list.get(), Format::AppleIntermediate, settings.appleIntermediate); !read) {
        return Failure{read.reason()};
    }
    if (auto read = readSection(list.get(), Format::ProRes, settings.proRes); !read) {
        return Failure{read.reason()};
    }
    const auto number = integerOf(plist_dict_get_item(list.get(), "default"));
    const auto format = number ? formatOfNumber(*number) : std::nullopt;
    if (!format || !settings.of(*format)) {
        return Failure{"\"default\" must be the number of one of the sections, 4 or 5"};
    }
    settings.defaultFormat = *format;
    return settings;
}

Result<Settings> readSettings(const std::string& path)
{
    const auto text = readFile<std::string>(path.c_str(), largestPropertyList);
    if (!text) {
        return Failure{text.reason()};
    }
    return parseSettings(*text);
}

} // namespace tavrix::movencoder
