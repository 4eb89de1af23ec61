// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as measurements of a source and its output: an output is never called whole that lacks what was asked for.
#include "input.h"
#include "judge/compare.h"
#include "judge/verdictline.h"

#include <algorithm>

namespace
{

using namespace tavrix;

double seconds(fuzz::Input& input)
{
    return static_cast<double>(static_cast<std::int32_t>(input.number())) / 100;
}

std::optional<double> maybeSeconds(fuzz::Input& input)
{
    return input.flag() ? std::optional(seconds(input)) : std::nullopt;
}

// Few enough that sums of them stay in range.
std::int64_t count(fuzz::Input& input)
{
    return static_cast<std::uint32_t>(input.number());
}

media::Flaws flaws(fuzz::Input& input)
{
    return {count(input) % 1000, maybeSeconds(input)};
}

media::StreamReading stream(fuzz::Input& input, media::Kind kind, int index)
{
    media::StreamReading reading;
    reading.facts.kind = kind;
    reading.facts.index = index;
    reading.facts.codec = input.flag() ? "h264" : "mjpeg";
    reading.facts.external = input.byte() == 7;
    reading.facts.encrypted = input.byte() == 7;
    reading.facts.edits.pieces = 1 + input.byte() % 3;
    reading.packets = count(input);
    reading.pictures = input.flag() ? reading.packets : count(input);
    reading.hidden = count(input) % 100;
    reading.packetsBeforeKey = count(input) % 100;
    reading.picturesBeforeKey = count(input) % 100;
    reading.first = seconds(input);
    reading.firstKey = input.flag() ? reading.first : seconds(input);
    reading.end = reading.first + std::abs(seconds(input));
    reading.interval = std::abs(seconds(input));
    reading.longestGap = std::abs(seconds(input));
    reading.broken = flaws(input);
    reading.promisedEnd = maybeSeconds(input);
    return reading;
}

media::Reading reading(fuzz::Input& input)
{
    media::Reading clip;
    clip.facts.isMovie = input.flag();
    clip.facts.container = clip.facts.isMovie ? "mov,mp4,m4a,3gp,3g2,mj2" : "mpegts";
    if (input.byte() != 9) {
        clip.streams.push_back(stream(input, media::Kind::Picture, 0));
    }
    if (input.flag()) {
        clip.streams.push_back(stream(input, media::Kind::Sound, 1));
    }
    for (const media::StreamReading& each : clip.streams) {
        clip.facts.streams.push_back(each.facts);
    }
    clip.flaws.cutOff = input.byte() == 9;
    clip.flaws.lost = flaws(input);
    clip.flaws.promisedEnd = maybeSeconds(input);
    clip.joins = count(input) % 4;
    clip.failure = input.byte() == 9 ? "Input/output error" : "";
    return clip;
}

std::optional<media::DecodedPictures> decoded(fuzz::Input& input)
{
    if (!input.flag()) {
        return std::nullopt;
    }
    media::DecodedPictures pictures;
    pictures.shown = count(input);
    pictures.damaged = flaws(input);
    pictures.lost = flaws(input);
    pictures.shownBefore = count(input) % 100;
    pictures.lostBefore = count(input) % 100;
    pictures.first = seconds(input);
    pictures.last = seconds(input);
    pictures.lastWhole = seconds(input);
    return pictures;
}

judge::Way way(fuzz::Input& input)
{
    return static_cast<judge::Way>(input.byte() % 3);
}

void checkVerdict(const judge::Verdict& verdict)
{
    const auto only = [&](auto allowed) {
        return std::ranges::all_of(verdict.findings, allowed);
    };
    if (verdict.outcome == judge::Outcome::Whole) {
        fuzz::require(only([](const judge::Finding& found) { return found.cause == judge::Cause::HiddenShown; }));
    } else {
        fuzz::require(!verdict.findings.empty() && !englishText(verdict).empty());
    }
    if (verdict.outcome == judge::Outcome::Incomplete) {
        fuzz::require(only([](const judge::Finding& found) {
            return found.cause <= judge::Cause::ReadError || found.cause == judge::Cause::HiddenShown;
        }));
    }
    const std::string line = judge::verdictLine(verdict);
    fuzz::require(std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; }));
    const std::optional<judge::Verdict> parsed = judge::parseVerdictLine(line);
    fuzz::require(parsed && judge::verdictLine(*parsed) == line);
}

void checkCompare(fuzz::Input input)
{
    judge::Asked asked{way(input), way(input), std::nullopt};
    if (input.flag()) {
        asked.rate = std::abs(seconds(input));
    }
    judge::Evidence evidence;
    evidence.source = reading(input);
    evidence.output = reading(input);
    evidence.sourcePictures = decoded(input);
    evidence.sourceSound = decoded(input);
    if (input.flag()) {
        evidence.outputEnds = media::DecodedEnds{input.flag(), input.flag()};
    }
    static_cast<void>(pictureIsDoubtful(evidence, asked));
    static_cast<void>(soundIsDoubtful(evidence, asked));
    const judge::Verdict verdict = compare(evidence, asked);
    checkVerdict(verdict);
    const bool wantsPicture =
        asked.picture != judge::Way::Left && evidence.source.chosen(media::Kind::Picture) != nullptr;
    if (wantsPicture && evidence.output.chosen(media::Kind::Picture) == nullptr) {
        fuzz::require(verdict.outcome == judge::Outcome::Failed);
    }
    if (!evidence.output.failure.empty()) {
        fuzz::require(verdict.outcome == judge::Outcome::Failed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    if (const auto verdict = judge::parseVerdictLine(input.text())) {
        const std::string line = judge::verdictLine(*verdict);
        const auto again = judge::parseVerdictLine(line);
        fuzz::require(again && judge::verdictLine(*again) == line);
        static_cast<void>(englishText(*verdict));
    }
    checkCompare(input);
    return 0;
}
