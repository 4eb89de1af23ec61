#include "tools/ffmpeg/transcript.h"

#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/metadatalines.h"
#include "tools/ffmpeg/progresslines.h"
#include "tools/ffmpeg/streamlines.h"
#include "tools/ffmpeg/textpieces.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace tavrix::front
{

namespace
{

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// A name counts only as a whole: "/proc/self/fd/5" does not stand in "/proc/self/fd/51".
std::string replacedName(const std::string& line, const std::string& url, const std::string& shown)
{
    std::string result;
    std::size_t begin = 0;
    for (auto at = line.find(url); at != std::string::npos; at = line.find(url, at + 1)) {
        const auto end = at + url.size();
        const bool whole = end == line.size() || std::isdigit(static_cast<unsigned char>(line[end])) == 0 ||
                           std::isdigit(static_cast<unsigned char>(url.back())) == 0;
        if (at < begin || !whole) {
            continue;
        }
        result += line.substr(begin, at - begin) + shown;
        begin = end;
    }
    return result + line.substr(begin);
}

// The names in today's lines of timestamp debugging lost their first part.
std::string classicPacketLine(std::string line)
{
    for (const std::string_view name : {"read_frame_internal stream=", "ff_read_packet stream="}) {
        const auto at = line.find(name);
        if (at == std::string::npos || (at >= 3 && line.compare(at - 3, 3, "av_") == 0)) {
            continue;
        }
        const bool hasOtherPrefix = name.starts_with("ff_");
        line.replace(at, hasOtherPrefix ? 3 : 0, "av_");
    }
    return line;
}

// Remarks on the words that this tool itself chose for an option.
bool concernsOwnSpelling(std::string_view line)
{
    return tellsForeignFormat(line) || contains(line, "-vsync is deprecated") || contains(line, "Use -fps_mode") ||
           contains(line, "Press [q] to stop");
}

} // namespace

Transcript::Transcript(TranscriptNames names, bool levelsMarked) : names_(std::move(names)), levelsMarked_(levelsMarked)
{
}

std::vector<TranscriptLine> Transcript::translate(std::string_view rawLine, char end)
{
    std::vector<TranscriptLine> lines;
    std::string line(rawLine);
    if (levelsMarked_ && !stripLevel(line)) {
        return lines;
    }
    if (const auto version = installedVersion(line)) {
        findings_.version = *version;
        return {{classicBanner(), '\n'}, {"  on top of ffmpeg " + *version, '\n'}};
    }
    std::string classic;
    if (translateFailure(line, classic)) {
        if (!classic.empty()) {
            lines.push_back({validUtf8(classic), end});
        }
        return lines;
    }
    const std::string bare = withoutNames(line);
    line = withShownNames(std::move(line));
    note(bare, line);
    if (concernsOwnSpelling(bare)) {
        return lines;
    }
    trackSection(line);
    if (bare == "Conversion failed!") {
        line = nameFailure(line);
    }
    keepRemark(line);
    if (section_ == Section::Mapping) {
        mapping_.push_back(validUtf8(translateOther(line)));
        return lines;
    }
    if (findings_.outputDescribed && !line.starts_with(' ') && !line.starts_with("Output #")) {
        releaseMapping(lines);
    }
    lines.push_back({validUtf8(translateOther(line)), end});
    return lines;
}

std::vector<TranscriptLine> Transcript::finish(int status)
{
    std::vector<TranscriptLine> lines;
    releaseMapping(lines);
    const bool onlyInput = names_.inputs.size() == 1 && findings_.inputDescribed && !failureTold_;
    const bool allWithoutParameters =
        std::ranges::all_of(describedStreams_, [&](int stream) { return withoutParameters_.contains(stream); });
    if (status != 0 && onlyInput && allWithoutParameters) {
        lines.push_back({validUtf8(names_.inputs.front().shown) + ": could not find codec parameters", '\n'});
    }
    return lines;
}

// Takes "[info] " off; false for lines that only the library's debug level prints.
bool Transcript::stripLevel(std::string& line) const
{
    struct Level {
        std::string_view mark;
        bool printed;
    };
    constexpr std::array levels = {
        Level{"[info] ", true},  Level{"[warning] ", true},  Level{"[error] ", true},  Level{"[fatal] ", true},
        Level{"[panic] ", true}, Level{"[verbose] ", false}, Level{"[debug] ", false}, Level{"[trace] ", false},
    };
    // The mark stands at the start, or behind the component: "[mpegts @ 0x55] [debug] ".
    const auto component = line.starts_with('[') && contains(line, " @ ") ? line.find("] [") : std::string::npos;
    const std::size_t at = component == std::string::npos ? 0 : component + 2;
    for (const Level& level : levels) {
        if (line.compare(at, level.mark.size(), level.mark) != 0) {
            continue;
        }
        line.erase(at, level.mark.size());
        return level.printed || contains(line, "timestamp discontinuity") || contains(line, "***");
    }
    return true;
}

std::string Transcript::withShownNames(std::string line) const
{
    for (const auto* files : {&names_.outputs, &names_.inputs}) {
        for (const FileName& file : *files) {
            line = replacedName(line, file.url, file.shown);
            // Some messages leave the protocol out.
            constexpr std::string_view descriptor = "file:/proc/self/fd/";
            if (file.url.starts_with(descriptor)) {
                line = replacedName(line, file.url.substr(5), file.shown);
            }
        }
    }
    return line;
}

// For what is concluded from a line: a file may bear the words of a failure.
std::string Transcript::withoutNames(std::string line) const
{
    for (const auto* files : {&names_.outputs, &names_.inputs}) {
        for (const FileName& file : *files) {
            if (file.url.starts_with("file:")) {
                line = replacedName(line, file.url, "");
            }
        }
    }
    return line;
}

void Transcript::note(const std::string& line, const std::string& shown)
{
    if (const auto option = refusedOption(line)) {
        findings_.refusedOption = *option;
    }
    foreignFormat_ = foreignFormat_ || tellsForeignFormat(line);
    findings_.annexBRefused = findings_.annexBRefused || refusesAnnexB(line);
    framesCounted_ = framesCounted_ || countsFrames(line);
    // Without pictures the header alone makes the file, and ffmpeg does not always say so.
    const bool noContent = tellsNoContent(line) && !framesCounted_;
    findings_.nothingEncoded = findings_.nothingEncoded || tellsNothingEncoded(line) || noContent;
    findings_.undecodable = findings_.undecodable || tellsUndecodable(line);
    if (findings_.writeFailure.empty() && tellsWriteFailure(line)) {
        findings_.writeFailure = shown;
    }
    findings_.decodeErrors += tellsDecodeError(line) ? 1 : 0;
    if (const auto stream = streamWithoutParameters(line)) {
        withoutParameters_.insert(*stream);
    }
}

void Transcript::trackSection(const std::string& line)
{
    if (line.starts_with("Input #")) {
        section_ = Section::Input;
        findings_.inputDescribed = true;
        const auto names = line.find(", ");
        const auto end = line.find(", from '");
        if (names != std::string::npos && end != std::string::npos && names < end) {
            showsIdentifiers_ = formatShowsIdentifiers(line.substr(names + 2, end - names - 2));
        }
    } else if (line.starts_with("Output #")) {
        section_ = Section::Output;
        findings_.outputDescribed = true;
    } else if (line == "Stream mapping:") {
        section_ = Section::Mapping;
    } else if (section_ == Section::Mapping ? !line.starts_with(' ') : isProgressLine(line)) {
        section_ = Section::None;
    }
    if (section_ == Section::Input && line.starts_with(' ')) {
        if (const auto stream = describedStream(line)) {
            describedStreams_.insert(*stream);
        }
    }
}

// "<input>: <reason>".
std::optional<OpenFailure> Transcript::namedFailure(const std::string& line) const
{
    for (std::size_t input = 0; input < names_.inputs.size(); ++input) {
        const std::string head = names_.inputs[input].url + ": ";
        if (line.starts_with(head)) {
            return OpenFailure{input, line.substr(head.size())};
        }
    }
    return std::nullopt;
}

// The failure of an input, which was told in other words; `classic` stays empty when nothing is to be printed.
bool Transcript::translateFailure(const std::string& line, std::string& classic)
{
    if (repeatsOpenFailure(line)) {
        return failureTold_;
    }
    const auto later = laterOpenFailure(line);
    auto failure = later ? later : namedFailure(line);
    if (!failure || failure->input >= names_.inputs.size()) {
        return false;
    }
    if (foreignFormat_ && failure->reason == "Invalid argument") {
        failure->reason = "Invalid data found when processing input";
    }
    const std::string& shown = names_.inputs[failure->input].shown;
    if (findings_.readFailure.empty() && tellsReadFailure(failure->reason)) {
        findings_.readFailure = shown + ": " + failure->reason;
    }
    auto reason = classicOpenFailure(failure->reason);
    if (!reason && later) {
        reason = "Error while opening file (" + failure->reason + ')';
    }
    if (!reason) {
        return false;
    }
    failureTold_ = true;
    classic = shown + ": " + *reason;
    return true;
}

// "Conversion failed!" says nothing; the remark before it does.
std::string Transcript::nameFailure(const std::string& line) const
{
    const std::string& clip = names_.inputs.empty() ? line : names_.inputs.front().shown;
    return remark_.empty() ? clip + ": the conversion failed" : clip + ": " + remark_;
}

// Keeps the last message that may be a reason, without the name of the part that printed it.
void Transcript::keepRemark(const std::string& line)
{
    const bool message = !line.empty() && line.front() != ' ' && section_ == Section::None && !isProgressLine(line) &&
                         !classicSummaryLine(line) && !line.starts_with("Press [q]");
    if (message) {
        const auto component = line.starts_with('[') && contains(line, " @ ") ? line.find("] ") : std::string::npos;
        remark_ = component == std::string::npos ? line : line.substr(component + 2);
    }
}

std::string Transcript::translateOther(const std::string& line)
{
    if (const auto progress = classicProgressLine(line, knownTime_)) {
        return *progress;
    }
    if (const auto summary = classicSummaryLine(line)) {
        return *summary;
    }
    if (section_ == Section::Input || section_ == Section::Output) {
        const StreamLineContext context{section_ == Section::Output, showsIdentifiers_};
        if (const auto stream = classicStreamLine(line, context)) {
            return *stream;
        }
        if (isMetadataLine(line)) {
            return withDottedNumbers(defusedMetadataLine(line));
        }
    }
    if (section_ == Section::Mapping && line.starts_with("  ")) {
        return withDottedNumbers(withoutParentheses(line));
    }
    return classicPacketLine(withDottedNumbers(line));
}

void Transcript::releaseMapping(std::vector<TranscriptLine>& lines)
{
    if (mapping_.empty()) {
        return;
    }
    for (std::string& line : mapping_) {
        lines.push_back({std::move(line), '\n'});
    }
    mapping_.clear();
    if (findings_.outputDescribed) {
        lines.push_back({"Press [q] to stop encoding", '\n'});
    }
}

} // namespace tavrix::front
