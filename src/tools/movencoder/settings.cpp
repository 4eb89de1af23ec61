#include "tools/movencoder/settings.h"

#include "tools/movencoder/aicencoder.h"
#include "tools/movencoder/plistreader.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace tavrix::movencoder
{

namespace
{

constexpr std::array<std::string_view, 4> profileNames{"proxy", "lt", "standard", "hq"};

struct Section {
    plist_t node;
    Format format;
    std::string& error;

    bool fail(std::string_view key, std::string_view problem) const
    {
        error = std::string("section ") + std::to_string(static_cast<int>(format)) + ": \"" + std::string(key) + "\" " +
                std::string(problem);
        return false;
    }
    // True with `value` untouched when the key is missing.
    bool number(const char* key, long long least, long long most, int& value) const
    {
        plist_t item = plist_dict_get_item(node, key);
        if (item == nullptr) {
            return true;
        }
        const auto found = integerOf(item);
        if (!found || *found < least || *found > most) {
            return fail(key, "must be a number from " + std::to_string(least) + " to " + std::to_string(most));
        }
        value = static_cast<int>(*found);
        return true;
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

bool knownKeysOnly(const Section& section)
{
    const bool intermediate = section.format == Format::AppleIntermediate;
    for (const std::string& key : keysOf(section.node)) {
        const bool common = key == "width" || key == "height" || key == "letterbox";
        const bool own = intermediate ? key == "quantiser" || key == "bytesPerFrame" : key == "profile";
        if (!common && !own) {
            return section.fail(key, "is not known");
        }
    }
    return true;
}

bool readGeometry(const Section& section, FormatSettings& settings)
{
    if (!section.number("width", aic::smallestSide, aic::largestSide, settings.width) ||
        !section.number("height", aic::smallestSide, aic::largestSide, settings.height)) {
        return false;
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
    return true;
}

bool readQuality(const Section& section, FormatSettings& settings)
{
    constexpr long long leastBytes = 1000;
    constexpr long long mostBytes = 100'000'000;
    if (!section.number("quantiser", aic::finestQuantiser, aic::coarsestQuantiser, settings.quantiser) ||
        !section.number("bytesPerFrame", leastBytes, mostBytes, settings.bytesPerFrame)) {
        return false;
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
                return true;
            }
            ++profile;
        }
        return section.fail("profile", "must be proxy, lt, standard or hq");
    }
    return true;
}

bool readSection(plist_t root, Format format, std::optional<FormatSettings>& settings, std::string& error)
{
    plist_t node = plist_dict_get_item(root, std::to_string(static_cast<int>(format)).c_str());
    if (node == nullptr) {
        return true;
    }
    const Section section{node, format, error};
    if (plist_get_node_type(node) != PLIST_DICT) {
        error = "section " + std::to_string(static_cast<int>(format)) + " is not a dictionary";
        return false;
    }
    settings.emplace();
    return knownKeysOnly(section) && readGeometry(section, *settings) && readQuality(section, *settings);
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

std::optional<Settings> parseSettings(const std::string& text, std::string& error)
{
    const PlistPtr list = parseDictionary(text);
    if (!list) {
        error = "not a property list with a dictionary";
        return std::nullopt;
    }
    for (const std::string& key : keysOf(list.get())) {
        if (key != "default" && key != "4" && key != "5") {
            error = "\"" + key + "\" is not known";
            return std::nullopt;
        }
    }
    Settings settings;
    if (!readSection(list.get(), Format::AppleIntermediate, settings.appleIntermediate, error) ||
        !readSection(list.get(), Format::ProRes, settings.proRes, error)) {
        return std::nullopt;
    }
    const auto number = integerOf(plist_dict_get_item(list.get(), "default"));
    const auto format = number ? formatOfNumber(*number) : std::nullopt;
    if (!format || !settings.of(*format)) {
        error = "\"default\" must be the number of one of the sections, 4 or 5";
        return std::nullopt;
    }
    settings.defaultFormat = *format;
    return settings;
}

std::optional<Settings> readSettings(const std::string& path, std::string& error)
{
    const auto text = readWholeFile(path, error);
    if (!text) {
        return std::nullopt;
    }
    return parseSettings(*text, error);
}

} // namespace tavrix::movencoder
