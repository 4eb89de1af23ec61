// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/transcript.h"

#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/errorlines.h"
#include "tools/ffmpeg/metadatalines.h"
#include "tools/ffmpeg/progresslines.h"
#include "tools/ffmpeg/streamlines.h"
#include "tools/ffmpeg/textpieces.h"

#include <array>

namespace tavrix::front
{

namespace
{

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// Installed names in the lines of timestamp debugging lack the first part.
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

// Remarks on the words that this tool itself chose for an option, and on formats by their classic names.
bool concernsOwnSpelling(std::string_view line)
{
    return tellsForeignFormat(line) || tellsOldPixelFormat(line) || contains(line, "-vsync is deprecated") ||
           contains(line, "Use -fps_mode") || contains(line, "Press [q] to stop");
}

// Where the message begins behind the components that print it: "[vist#0:0/h264 @ 0x55] [dec:h264 @ 0x55] message".
std::size_t messageStart(std::string_view line)
{
    std::size_t at = 0;
    while (line.substr(at).starts_with('[')) {
        const auto end = line.find("] ", at);
        if (end == std::string_view::npos || !contains(line.substr(at, end - at), " @ ")) {
            break;
        }
        at = end + 2;
    }
    return at;
}

// Takes "[info] " off; false for lines that only the library's debug level prints.
bool stripLevel(std::string& line)
{
    struct Level {
        std::string_view mark;
        bool printed;
    };
    constexpr std::array levels = {
        Level{"[info] ", true},  Level{"[warning] ", true},  Level{"[error] ", true},  Level{"[fatal] ", true},
        Level{"[panic] ", true}, Level{"[verbose] ", false}, Level{"[debug] ", false}, Level{"[trace] ", false},
    };
    const std::size_t at = messageStart(line);
    for (const Level& level : levels) {
        if (line.compare(at, level.mark.size(), level.mark) != 0) {
            continue;
        }
        line.erase(at, level.mark.size());
        return level.printed || contains(line, "timestamp discontinuity") || contains(line, "***");
    }
    return true;
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
    if (repeatsOpenFailure(line) && failureTold_) {
        return lines;
    }
    if (const auto failure = translatedFailure(line)) {
        lines.push_back({validUtf8(*failure), end});
        return lines;
    }
    const std::string bare = names_.removedFrom(line);
    line = names_.shownIn(std::move(line));
    findings_.note(bare, line);
    if (concernsOwnSpelling(bare)) {
        return lines;
    }
    description_.follow(bare);
    if (bare == "Conversion failed!") {
        line = nameFailure(line);
    }
    keepRemark(line);
    translateContent(lines, line, end);
    return lines;
}

std::vector<TranscriptLine> Transcript::finish(int status)
{
    std::vector<TranscriptLine> lines;
    releaseMapping(lines);
    releaseSummary(lines);
    const bool onlyInput = names_.inputs.size() == 1 && findings_.inputDescribed && !failureTold_;
    if (status != 0 && onlyInput && description_.lacksAllParameters()) {
        lines.push_back({validUtf8(names_.inputs.front().shown) + ": could not find codec parameters", '\n'});
    }
    return lines;
}

// The failure of an input, which was told in other words.
std::optional<std::string> Transcript::translatedFailure(const std::string& line)
{
    const auto later = laterOpenFailure(line);
    auto failure = later ? later : names_.failureIn(line);
    if (!failure || failure->input >= names_.inputs.size()) {
        return std::nullopt;
    }
    if (findings_.foreignFormat && failure->reason == "Invalid argument") {
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
        return std::nullopt;
    }
    failureTold_ = true;
    return shown + ": " + *reason;
}

void Transcript::translateContent(std::vector<TranscriptLine>& lines, const std::string& line, char end)
{
    if (description_.section() == Description::Section::Mapping) {
        mapping_.push_back(validUtf8(translateOther(line)));
        return;
    }
    if (findings_.outputDescribed && !line.starts_with(' ') && !line.starts_with("Output #")) {
        releaseMapping(lines);
    }
    std::string text = validUtf8(translateOther(line));
    if (classicSummaryLine(line) && !progressEnded_) {
        summary_ = std::move(text);
        return;
    }
    lines.push_back({std::move(text), end});
    if (endsProgress(line)) {
        progressEnded_ = true;
        releaseSummary(lines);
    }
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
    const bool message = !line.empty() && line.front() != ' ' && description_.section() == Description::Section::None &&
                         !isProgressLine(line) && !classicSummaryLine(line) && !line.starts_with("Press [q]") &&
                         line.find("Qavg:") == std::string::npos;
    if (message) {
        remark_ = line.substr(messageStart(line));
    }
}

std::string Transcript::translateOther(const std::string& given)
{
    using Section = Description::Section;
    const std::string line = description_.outdented(given);
    if (const auto progress = classicProgressLine(line, knownTime_)) {
        return *progress;
    }
    if (const auto summary = classicSummaryLine(line)) {
        return *summary;
    }
    if (description_.section() == Section::Input || description_.section() == Section::Output) {
        const StreamLineContext context{description_.section() == Section::Output, description_.showsIdentifiers()};
        if (const auto stream = classicStreamLine(line, context)) {
            return *stream;
        }
        if (isMetadataLine(line)) {
            return withDottedNumbers(defusedMetadataLine(line));
        }
    }
    if (description_.section() == Section::Mapping && line.starts_with("  ")) {
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

void Transcript::releaseSummary(std::vector<TranscriptLine>& lines)
{
    if (!summary_.empty()) {
        lines.push_back({std::move(summary_), '\n'});
        summary_.clear();
    }
}

} // namespace tavrix::front
