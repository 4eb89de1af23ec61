// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/arguments.h"

#include "media/mediainput.h"
#include "tools/ffmpeg/filters.h"
#include "tools/ffmpeg/outputjob.h"
#include "tools/ffmpeg/picturefilters.h"
#include "tools/ffmpeg/soundfilters.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace tavrix::front
{

namespace
{

constexpr std::string_view annexB = "h264_mp4toannexb";

using Words = std::vector<std::string>;

OptionTreatment treatmentOf(const Option& option)
{
    return optionRule(option.name).treatment;
}

// One output with all that decides on its arguments.
struct Conversion {
    const CommandLine& line;
    const FileEntry& output;
    const FileUrls::Output& target;
    const InstalledDialect& dialect;
    const Source& source;
    OutputJob job;

    [[nodiscard]] const media::StreamFacts* picture() const { return chosen(media::Kind::Picture); }
    [[nodiscard]] const media::StreamFacts* sound() const { return chosen(media::Kind::Sound); }

private:
    [[nodiscard]] const media::StreamFacts* chosen(media::Kind kind) const
    {
        return source ? source->facts.chosen(kind) : nullptr;
    }
};

// An output rate as filters: ffmpeg's own way drops a picture only when it is more than one late, so that a halved rate
// lags by two of the source's. Nothing for a rate in words, or where the filters are not one chain.
std::optional<std::string> rateFilters(const Conversion& conversion)
{
    const auto& options = conversion.output.options;
    const bool ownGraph = hasOption(conversion.line.globals, OptionTreatment::FilterGraph) ||
                          hasOption(options, OptionTreatment::FilterGraph);
    const auto rate = optionValue(options, OptionTreatment::Rate);
    if (!rate || ownGraph || conversion.job.picture != Treatment::Encoded) {
        return std::nullopt;
    }
    return nearestPictureFilters(*rate, conversion.picture());
}

// How frames are spaced. A rate together with frames passed through is refused, or fails at the first frame; passed
// through alone, an encode dies of the first two frames that share a time, where dropping one of them is enough.
std::optional<std::string> frameSpacing(const Conversion& conversion, bool rateByFilter)
{
    const auto& options = conversion.output.options;
    if (conversion.job.picture != Treatment::Encoded) {
        return std::nullopt;
    }
    const bool hasRate = hasOption(options, OptionTreatment::Rate) && !rateByFilter;
    const auto asked = optionValue(options, OptionTreatment::FrameSpacing);
    if (!asked) {
        // The classic null container is filled at a constant rate; the probe for repeated frames depends on it.
        const bool toNull = optionValue(options, OptionTreatment::Container) == "null";
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

// When the first stream begins; every conversion begins there.
double startOf(const media::SourceFacts& facts)
{
    double first = facts.streams.empty() ? 0 : facts.streams.front().start.value_or(0);
    for (const media::StreamFacts& stream : facts.streams) {
        first = std::min(first, stream.start.value_or(0));
    }
    return first;
}

std::string pictureFilters(const Conversion& conversion, const std::optional<std::string>& rate)
{
    const auto given = optionValue(conversion.output.options, OptionTreatment::PictureFilters);
    const std::string filters = given ? installedFilters(*given) : std::string();
    const media::StreamFacts* const picture = conversion.picture();
    if (conversion.job.picture != Treatment::Encoded || picture == nullptr) {
        return joinedFilters(rate.value_or(""), filters);
    }
    const std::string mirror = conversion.dialect.mirrors ? "" : forgottenMirror(picture->turning);
    const std::string times =
        joinedFilters(respacedFilters(*picture, startOf(conversion.source->facts), !rate), rate.value_or(""));
    return joinedFilters(times, joinedFilters(mirror, fittedFilters(filters, *picture)));
}

// Samples without coding follow one another without times: what a hole in the source leaves out would let all the rest
// come early, so it is filled with silence.
bool mustFillHoles(const Conversion& conversion)
{
    const auto codec = optionValue(conversion.output.options, OptionTreatment::SoundCodec);
    const bool samples = codec && codec->starts_with("pcm_");
    return samples && conversion.job.sound == Treatment::Encoded && conversion.sound() != nullptr;
}

std::string soundFilters(const Conversion& conversion)
{
    const std::string fill = mustFillHoles(conversion) ? "aresample=async=1" : "";
    const auto given = optionValue(conversion.output.options, OptionTreatment::SoundFilters);
    std::string filters = joinedFilters(fill, given.value_or(""));
    const bool twoChannels = optionValue(conversion.output.options, OptionTreatment::Channels) == "2";
    if (conversion.job.sound != Treatment::Encoded || conversion.sound() == nullptr || !twoChannels) {
        return filters;
    }
    return joinedFilters(twoChannelFilters(*conversion.sound()), filters);
}

// What a copied picture needs so that its times come through.
Words copyOptions(const Conversion& conversion)
{
    const media::StreamFacts* const picture = conversion.picture();
    if (conversion.job.picture != Treatment::Copied || picture == nullptr ||
        hasOption(conversion.output.options, OptionTreatment::Rate)) {
        return {};
    }
    const media::Ratio rate = picture->nominalRate;
    if (conversion.job.container == "avi" && conversion.source->facts.container != "avi" && rate.known()) {
        // The container is all pictures of one length, and ffmpeg would choose half a picture.
        return {"-r", std::to_string(rate.num) + '/' + std::to_string(rate.den)};
    }
    // 90000 parts of a second hold no whole number of them for these rates.
    const bool uneven = rate.den == 1001 && 90000 * 1001LL % rate.num != 0;
    if (conversion.job.isMovie() && conversion.source->facts.container == "mpegts" && uneven) {
        return {"-video_track_timescale", std::to_string(rate.num)};
    }
    return {};
}

// A line of a preset file has one equals sign; the encoder's own options stand behind it as "name value:name value".
std::string encoderOwnOptions(std::string options)
{
    std::ranges::replace(options, ' ', '=');
    return options;
}

// An option of the output, unless it is one that the output gets at a place of its own.
void appendOutputOption(Words& words, const Option& option, const InstalledDialect& dialect, bool rateByFilter)
{
    const OptionRule rule = optionRule(option.name);
    auto value = option.value;
    switch (rule.treatment) {
    case OptionTreatment::Container:
    case OptionTreatment::FrameSpacing:
    case OptionTreatment::PictureFilters:
    case OptionTreatment::SoundFilters:
        return;
    case OptionTreatment::Rate:
        if (rateByFilter) {
            return;
        }
        break;
    case OptionTreatment::BitstreamFilters:
        value = dialect.annexBFilter ? value : withoutAnnexB(value.value_or(""));
        if (value == "" && !dialect.annexBFilter) {
            return;
        }
        break;
    case OptionTreatment::EncoderOptions:
        value = encoderOwnOptions(value.value_or(""));
        break;
    case OptionTreatment::DottedMap:
        value = dottedToColon(value.value_or(""));
        break;
    default:
        break;
    }
    appendOption(words, rule.installedName, value);
}

std::string joinedWords(const std::string& first, const std::string& second)
{
    return first.empty() || second.empty() ? first + second : first + ' ' + second;
}

Words editOptions(const CopyEdits& edits)
{
    Words words = {"-video_track_timescale", std::to_string(edits.mediaScale)};
    if (edits.way == CopyEdits::Way::CutEnd) {
        std::array<char, 64> seconds = {};
        std::snprintf(seconds.data(), seconds.size(), "%.6f", edits.shownSeconds);
        words.insert(words.end(), {"-t", seconds.data()});
        return words;
    }
    words.insert(words.end(), {"-map", "0:" + std::to_string(edits.pictureStream)});
    if (edits.soundStream) {
        words.insert(words.end(), {"-map", "1:" + std::to_string(*edits.soundStream)});
    }
    return words;
}

// What ffmpeg would drop, and what only the arguments can say of the copy's edits.
Words clipOptions(const Conversion& conversion)
{
    if (!conversion.source) {
        return {};
    }
    Words words;
    const media::ClipTags& tags = conversion.source->tags;
    const auto add = [&](const std::string& key, const std::string& value) {
        if (!value.empty()) {
            words.insert(words.end(), {"-metadata", key + '=' + value});
        }
    };
    add("creation_time", tags.createdUtc);
    add("title", tags.title);
    add("comment", tags.comment);
    if (conversion.job.container == "avi") {
        const std::string camera = joinedWords(tags.make, tags.model);
        add("date", tags.createdUtc.substr(0, 10));
        add("ISRC", camera);
    }
    if (conversion.job.container == "ipod" && tags.hasTimeCode) {
        words.insert(words.end(), {"-write_tmcd", "1"});
    }
    if (const auto& edits = conversion.source->edits) {
        const Words own = editOptions(*edits);
        words.insert(words.end(), own.begin(), own.end());
    }
    return words;
}

void appendOutput(Words& words, const Conversion& conversion)
{
    const auto rate = rateFilters(conversion);
    words.insert(words.end(), conversion.target.muxer.begin(), conversion.target.muxer.end());
    for (const Option& option : conversion.output.options) {
        appendOutputOption(words, option, conversion.dialect, rate.has_value());
    }
    if (const std::string filters = pictureFilters(conversion, rate); !filters.empty()) {
        appendOption(words, "vf", filters);
    }
    if (const std::string filters = soundFilters(conversion); !filters.empty()) {
        appendOption(words, "af", filters);
    }
    if (const auto spacing = frameSpacing(conversion, rate.has_value())) {
        appendOption(words, conversion.dialect.frameRateMode ? "fps_mode" : "vsync", *spacing);
    }
    for (const Words& more : {copyOptions(conversion), clipOptions(conversion)}) {
        words.insert(words.end(), more.begin(), more.end());
    }
    words.push_back(conversion.target.url);
}

bool copiesOwnList(const Source& source)
{
    return source && source->edits && source->edits->way == CopyEdits::Way::OwnList;
}

void appendInput(Words& words, const FileEntry& input, const std::string& url)
{
    for (const Option& option : input.options) {
        appendOption(words, optionRule(option.name).installedName, option.value);
    }
    if (!hasOption(input.options, OptionTreatment::Container)) {
        words.insert(words.end(), {"-format_whitelist", media::sourceDemuxers});
    }
    words.insert(words.end(), {"-protocol_whitelist", media::localProtocols, "-i", url});
}

std::string logLevel(const CommandLine& line)
{
    if (line.timestampDebug) {
        return "debug";
    }
    return levelsAreMarked(line) ? "level+debug" : "info";
}

} // namespace

Words installedArguments(const CommandLine& line, const FileUrls& urls, const InstalledDialect& dialect,
                         const Source& source)
{
    Words words = {"-nostdin", "-v", logLevel(line)};
    if (!line.outputs.empty()) {
        words.emplace_back("-y");
    }
    if (source) {
        // However much of a source is damaged, the rest is wanted; the judge says what is missing.
        appendOption(words, "max_error_rate", "1");
    }
    for (const Option& option : line.globals) {
        appendOption(words, optionRule(option.name).installedName, option.value);
    }
    for (std::size_t i = 0; i < line.inputs.size(); ++i) {
        if (copiesOwnList(source)) {
            // All packets of the pictures, and the sound as it is played.
            words.insert(words.end(), {"-ignore_editlist", "1"});
            appendInput(words, line.inputs[i], urls.inputs[i]);
        }
        appendInput(words, line.inputs[i], urls.inputs[i]);
    }
    for (std::size_t i = 0; i < line.outputs.size(); ++i) {
        const FileEntry& output = line.outputs[i];
        const FileUrls::Output& target = urls.outputs[i];
        appendOutput(words, {line, output, target, dialect, source, outputJob(output, target.muxer)});
    }
    return words;
}

std::optional<OutputJob> clipJob(const CommandLine& line, const FileUrls& urls)
{
    if (!convertsWholeClip(line) || urls.outputs.size() != 1) {
        return std::nullopt;
    }
    OutputJob job = outputJob(line.outputs.front(), urls.outputs.front().muxer);
    return job.isMovie() || job.container == "avi" ? std::optional(job) : std::nullopt;
}

bool levelsAreMarked(const CommandLine& line)
{
    return line.verbosity > 2 && !line.timestampDebug;
}

bool mayRefuseAnnexB(const CommandLine& line)
{
    for (const FileEntry& output : line.outputs) {
        for (const Option& option : output.options) {
            const bool filters = treatmentOf(option) == OptionTreatment::BitstreamFilters;
            if (filters && option.value.value_or("").find(annexB) != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace tavrix::front
