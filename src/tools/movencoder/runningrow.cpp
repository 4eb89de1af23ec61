// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/runningrow.h"

#include "sys/home.h"
#include "sys/secondpass.h"
#include "sys/transfer.h"
#include "tools/movencoder/plistreader.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace tavrix::movencoder
{

namespace
{

struct NamePieces {
    std::string_view folder; // up to and with the last slash
    std::string_view base;
    std::string_view extension; // with its dot
};

NamePieces piecesOf(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t name = slash == std::string_view::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind('.');
    const std::size_t end = dot == std::string_view::npos || dot < name ? path.size() : dot;
    return {path.substr(0, name), path.substr(name, end - name), path.substr(end)};
}

} // namespace

std::string preferencesPath()
{
    // The tool lies in the folder "tools" of the resources, whose Info.plist names the program's store.
    std::error_code failure;
    const auto tool = std::filesystem::read_symlink("/proc/self/exe", failure);
    const std::string info = (tool.parent_path().parent_path() / "Info.plist").string();
    const auto text = readFile<std::string>(info.c_str(), largestPropertyList);
    const PlistPtr list = text ? parseDictionary(*text) : nullptr;
    const auto valueOf = [&list](const char* key) {
        return list ? textOf(plist_dict_get_item(list.get(), key)).value_or(std::string()) : std::string();
    };
    return secondpass::storePath(ownHome(), valueOf(secondpass::identifierKey), valueOf(secondpass::nameKey));
}

std::optional<RunningRow> runningRow(const std::string& preferences, const std::string& input,
                                     const std::string& output)
{
    const auto text = readFile<std::string>(preferences.c_str(), largestPropertyList);
    if (!text) {
        return std::nullopt;
    }
    const PlistPtr list = parseDictionary(*text);
    plist_t record = list ? plist_dict_get_item(list.get(), secondpass::record) : nullptr;
    if (record == nullptr || plist_get_node_type(record) != PLIST_DICT) {
        return std::nullopt;
    }
    if (textOf(plist_dict_get_item(record, secondpass::output)) != output ||
        textOf(plist_dict_get_item(record, secondpass::intermediate)) != input) {
        return std::nullopt;
    }
    RunningRow row;
    if (const auto number = integerOf(plist_dict_get_item(record, secondpass::format))) {
        row.format = formatOfNumber(*number);
    }
    // The record's own source is the first pass by now; this key has the clip, or a word when the batch is stopping.
    const auto clip = textOf(plist_dict_get_item(list.get(), secondpass::clip));
    if (clip && clip->starts_with('/')) {
        row.clip = *clip;
    }
    return row;
}

bool isFirstPassOf(const std::string& output, const std::string& input)
{
    const NamePieces made = piecesOf(output);
    const NamePieces read = piecesOf(input);
    return output != input && read.folder == made.folder && read.extension == made.extension &&
           read.base.ends_with(secondpass::masterSuffix);
}

} // namespace tavrix::movencoder
