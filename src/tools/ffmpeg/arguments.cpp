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

// What is opened: the containers that the program handles, and local files. A play list, a script or a list of pictures
// under a clip's name would lead to other files, or to addresses.
constexpr const char* handledContainers = "mpegts,mov,mp4,m4a,3gp,3g2,mj2,avi,mpeg,mpegvideo,dv";
constexpr const char* localProtocols = "file,pipe,fd";

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

// An output rate as filters: ffmpeg's own way drops a picture only when it is more than one late, so that a halved rate
// lags by two of the source's. Nothing for a rate in words, or where the filters are not one chain.
std::optional<std::string> rateFilters(const CommandLine& line, const FileEntry& output)
{
    const bool ownGraph = hasOption(line.globals, "filter_complex") || hasOption(output.options, "filter_complex");
    const auto rate = optionValue(output.options, "r");
    if (!rate || ownGraph || !encodesVideo(output.options)) {
        return std::nullopt;
    }
    return nearestPictureFilters(*rate);
}

// How frames are spaced. A rate together with frames passed through is refused, or fails at the first frame; passed
// through alone, an encode dies of the first two frames that share a time, where dropping one of them is enough.
std::optional<std::string> frameSpacing(const FileEntry& output, bool rateByFilter)
{
    if (!encodesVideo(output.options)) {
        return std::nullopt;
    }
    const bool hasRate = hasOption(output.options, "r") && !rateByFilter;
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

bool isPictureFilter(const Option& option)
{
    const std::string name = optionRule(option.name).modernName;
    return (name == "vf" || name == "filter:v") && option.value;
}

void appendOutputOption(Words& words, const Option& option, const Dialect& dialect)
{
    const std::string name = optionRule(option.name).modernName;
    if (name == "bsf:v" && option.value && !dialect.annexBFilter) {
        const std::string kept = withoutAnnexB(*option.value);
        if (!kept.empty()) {
            appendOption(words, name, kept);
        }
    } else if (name == "map" && option.value) {
        appendOption(words, name, dottedToColon(*option.value));
    } else {
        appendOption(words, name, option.value);
    }
}

void appendOutput(Words& words, const CommandLine& line, std::size_t number, const FileUrls::Output& target,
                  const Dialect& dialect)
{
    const FileEntry& output = line.outputs[number];
    const auto rate = rateFilters(line, output);
    words.insert(words.end(), target.muxer.begin(), target.muxer.end());
    std::string filters = rate.value_or("");
    for (const Option& option : output.options) {
        const bool placedOnce = isOptionFor(option, {"vsync", "fps_mode", "f"}) || (rate && option.name == "r");
        if (isPictureFilter(option)) {
            filters = joinedFilters(rate.value_or(""), modernFilters(*option.value));
        } else if (!placedOnce) {
            appendOutputOption(words, option, dialect);
        }
    }
    if (!filters.empty()) {
        appendOption(words, "vf", filters);
    }
    if (const auto spacing = frameSpacing(output, rate.has_value())) {
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
        if (!hasOption(line.inputs[i].options, "f")) {
            words.insert(words.end(), {"-format_whitelist", handledContainers});
        }
        words.insert(words.end(), {"-protocol_whitelist", localProtocols, "-i", urls.inputs[i]});
    }
    for (std::size_t i = 0; i < line.outputs.size(); ++i) {
        appendOutput(words, line, i, urls.outputs[i], dialect);
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
