#include "tools/ffmpeg/arguments.h"

#include "tools/ffmpeg/filters.h"
#include "tools/ffmpeg/optionrules.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace tavrix::front
{

namespace
{

constexpr std::string_view annexB = "h264_mp4toannexb";

using Words = std::vector<std::string>;

bool isOptionFor(const Option& option, std::initializer_list<std::string_view> names)
{
    return std::ranges::find(names, option.name) != names.end();
}

bool encodesVideo(const std::vector<Option>& options)
{
    bool copied = hasOption(options, "vn");
    for (const Option& option : options) {
        if (isOptionFor(option, {"vcodec", "c:v", "codec:v", "c", "codec"})) {
            copied = option.value == "copy";
        }
    }
    return !copied && !hasOption(options, "vn");
}

// How frames are spaced. A rate together with frames passed through is refused, or fails at the first frame; passed
// through alone, an encode dies of the first two frames that share a time, where dropping one of them is enough.
std::optional<std::string> frameSpacing(const FileEntry& output)
{
    if (!encodesVideo(output.options)) {
        return std::nullopt;
    }
    const bool hasRate = hasOption(output.options, "r");
    const auto asked = optionValue(output.options, "vsync");
    if (!asked) {
        // The null container was filled at a constant rate; the probe for repeated frames depends on it.
        const bool toNull = optionValue(output.options, "f") == "null";
        return toNull ? std::optional<std::string>("cfr") : std::nullopt;
    }
    if (asked == "0" || asked == "passthrough") {
        return hasRate ? "cfr" : "vfr";
    }
    if (asked == "1" || asked == "cfr") {
        return "cfr";
    }
    if (asked == "2" || asked == "vfr") {
        return hasRate ? "cfr" : "vfr";
    }
    return std::nullopt;
}

void appendOption(Words& words, const std::string& name, const std::optional<std::string>& value)
{
    words.push_back('-' + name);
    if (value) {
        words.push_back(*value);
    }
}

std::string withoutAnnexB(const std::string& filters)
{
    std::string kept;
    std::size_t begin = 0;
    while (begin <= filters.size()) {
        const auto comma = std::min(filters.find(',', begin), filters.size());
        const std::string filter = filters.substr(begin, comma - begin);
        if (filter != annexB) {
            kept += (kept.empty() ? "" : ",") + filter;
        }
        begin = comma + 1;
    }
    return kept;
}

std::string dottedToColon(std::string map)
{
    const auto dot = map.find('.');
    const bool plain = dot != std::string::npos && map.find_first_not_of("0123456789.") == std::string::npos;
    if (plain) {
        map[dot] = ':';
    }
    return map;
}

void appendOutputOption(Words& words, const Option& option, const Dialect& dialect)
{
    const std::string name = optionRule(option.name).modernName;
    if (isOptionFor(option, {"vsync", "fps_mode", "f"})) {
        return; // placed once for the whole output
    }
    if (name == "bsf:v" && option.value && !dialect.annexBFilter) {
        const std::string kept = withoutAnnexB(*option.value);
        if (!kept.empty()) {
            appendOption(words, name, kept);
        }
    } else if ((name == "vf" || name == "filter:v") && option.value) {
        appendOption(words, name, modernFilters(*option.value));
    } else if (name == "map" && option.value) {
        appendOption(words, name, dottedToColon(*option.value));
    } else {
        appendOption(words, name, option.value);
    }
}

void appendOutput(Words& words, const FileEntry& output, const FileUrls::Output& target, const Dialect& dialect)
{
    words.insert(words.end(), target.muxer.begin(), target.muxer.end());
    for (const Option& option : output.options) {
        appendOutputOption(words, option, dialect);
    }
    if (const auto spacing = frameSpacing(output)) {
        appendOption(words, dialect.frameRateMode ? "fps_mode" : "vsync", *spacing);
    }
    words.push_back(target.url);
}

std::string logLevel(const CommandLine& line)
{
    if (line.timestampDebug) {
        return "debug";
    }
    return levelsAreMarked(line) ? "level+debug" : "info";
}

} // namespace

Words modernArguments(const CommandLine& line, const FileUrls& urls, const Dialect& dialect)
{
    Words words = {"-nostdin", "-v", logLevel(line)};
    if (!line.outputs.empty()) {
        words.emplace_back("-y");
    }
    for (const Option& option : line.globals) {
        appendOption(words, optionRule(option.name).modernName, option.value);
    }
    for (std::size_t i = 0; i < line.inputs.size(); ++i) {
        for (const Option& option : line.inputs[i].options) {
            appendOption(words, optionRule(option.name).modernName, option.value);
        }
        words.insert(words.end(), {"-protocol_whitelist", "file,pipe,fd", "-i", urls.inputs[i]});
    }
    for (std::size_t i = 0; i < line.outputs.size(); ++i) {
        appendOutput(words, line.outputs[i], urls.outputs[i], dialect);
    }
    return words;
}

Dialect dialectAfterRefusal(const Dialect& dialect, std::string_view refusedOption, std::string_view version)
{
    Dialect next = dialect;
    const int major = std::atoi(std::string(version).c_str());
    // A build from the development branch has a name such as "N-123" instead of a number, and is a recent one.
    const bool knowsFrameRateMode = major == 0 || major >= 5;
    if (refusedOption == "vsync" && knowsFrameRateMode) {
        next.frameRateMode = true;
    }
    return next;
}

bool levelsAreMarked(const CommandLine& line)
{
    return line.verbosity > 2 && !line.timestampDebug;
}

bool mayRefuseAnnexB(const CommandLine& line)
{
    for (const FileEntry& output : line.outputs) {
        for (const Option& option : output.options) {
            const bool isFilter = optionRule(option.name).modernName == "bsf:v" && option.value;
            if (isFilter && option.value->find(annexB) != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace tavrix::front
