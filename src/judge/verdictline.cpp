// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/verdictline.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tavrix::judge
{

namespace
{

constexpr std::string_view head = "tavrix-verdict:";

constexpr std::array<std::pair<Outcome, std::string_view>, 3> outcomes = {{
    {Outcome::Whole, "whole"},
    {Outcome::Incomplete, "incomplete"},
    {Outcome::Failed, "failed"},
}};

constexpr std::array<std::pair<Cause, std::string_view>, 26> causes = {{
    {Cause::EndedEarly, "ended-early"},
    {Cause::SoundEndedEarly, "sound-ended-early"},
    {Cause::CutOff, "cut-off"},
    {Cause::DamagedPictures, "damaged-pictures"},
    {Cause::DamagedSound, "damaged-sound"},
    {Cause::LostPackets, "lost-packets"},
    {Cause::ReadError, "read-error"},
    {Cause::NotReadable, "not-readable"},
    {Cause::NoPicture, "no-picture"},
    {Cause::NoSound, "no-sound"},
    {Cause::ShorterPicture, "shorter-picture"},
    {Cause::ShorterSound, "shorter-sound"},
    {Cause::LongerPicture, "longer-picture"},
    {Cause::PictureCount, "picture-count"},
    {Cause::BrokenPackets, "broken-packets"},
    {Cause::EndsNotDecodable, "ends-not-decodable"},
    {Cause::NothingDecodable, "nothing-decodable"},
    {Cause::NothingReadable, "nothing-readable"},
    {Cause::PicturesElsewhere, "pictures-elsewhere"},
    {Cause::Encrypted, "encrypted"},
    {Cause::TooSmall, "too-small"},
    {Cause::OlderKept, "older-kept"},
    {Cause::NameTaken, "name-taken"},
    {Cause::NotPublished, "not-published"},
    {Cause::NotJudged, "not-judged"},
    {Cause::HiddenShown, "hidden-shown"},
}};

template <typename Table, typename Key> std::string_view nameIn(const Table& table, Key key)
{
    const auto entry = std::ranges::find(table, key, [](const auto& pair) { return pair.first; });
    return entry->second;
}

template <typename Table>
auto keyIn(const Table& table, std::string_view name) -> std::optional<typename Table::value_type::first_type>
{
    const auto entry = std::ranges::find(table, name, [](const auto& pair) { return pair.second; });
    return entry == table.end() ? std::nullopt : std::optional(entry->first);
}

// Hundredths are enough for people, and print the same everywhere.
std::string number(double value)
{
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%.2f", std::isfinite(value) ? value : 0.0);
    std::string plain = text.data();
    std::ranges::replace(plain, ',', '.');
    return plain;
}

bool isPlain(char c)
{
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return letter || (c >= '0' && c <= '9') || std::string_view("-_.,:/()").find(c) != std::string_view::npos;
}

std::string escaped(std::string_view text)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string out;
    for (const char c : text) {
        if (isPlain(c)) {
            out += c;
        } else {
            const auto byte = static_cast<std::uint8_t>(c);
            out += {'%', digits[byte >> 4], digits[byte & 0x0f]};
        }
    }
    return out;
}

// The tools write a line in one piece, which a pipe takes up to a length; a character is not cut in two.
std::string_view shortened(std::string_view text)
{
    constexpr std::size_t longest = 300;
    if (text.size() <= longest) {
        return text;
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<std::uint8_t>(text[end]) & 0xc0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

std::optional<int> hexDigit(char c)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto place = digits.find(c);
    return place == std::string_view::npos ? std::nullopt : std::optional(static_cast<int>(place));
}

std::optional<std::string> unescaped(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        if (text.front() != '%') {
            out += text.front();
            text.remove_prefix(1);
            continue;
        }
        const auto high = text.size() < 3 ? std::nullopt : hexDigit(text[1]);
        const auto low = text.size() < 3 ? std::nullopt : hexDigit(text[2]);
        if (!high || !low) {
            return std::nullopt;
        }
        out += static_cast<char>(*high * 16 + *low);
        text.remove_prefix(3);
    }
    return out;
}

template <typename Number> bool parseNumber(std::string_view text, Number& to)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), to);
    return error == std::errc() && end == text.data() + text.size();
}

bool parseField(std::string_view word, Finding& finding)
{
    const auto equals = word.find('=');
    const std::string_view key = word.substr(0, equals);
    const std::string_view value = word.substr(equals + 1);
    if (key == "seconds") {
        return parseNumber(value, finding.seconds);
    }
    if (key == "of-seconds") {
        return parseNumber(value, finding.ofSeconds);
    }
    if (key == "count") {
        return parseNumber(value, finding.count);
    }
    if (key == "of-count") {
        return parseNumber(value, finding.ofCount);
    }
    if (key == "from") {
        return parseNumber(value, finding.from.emplace());
    }
    auto text = key == "text" ? unescaped(value) : std::nullopt;
    finding.text = text.value_or(std::string());
    return text.has_value();
}

std::string_view nextWord(std::string_view& line)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto start = std::min(line.find_first_not_of(blanks), line.size());
    line.remove_prefix(start);
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

} // namespace

std::string verdictLine(const Verdict& verdict)
{
    std::string line(head);
    line += ' ';
    line += nameIn(outcomes, verdict.outcome);
    for (const Finding& finding : verdict.findings) {
        line += ' ';
        line += nameIn(causes, finding.cause);
        if (finding.seconds != 0 || finding.ofSeconds != 0) {
            line += " seconds=" + number(finding.seconds) + " of-seconds=" + number(finding.ofSeconds);
        }
        if (finding.count != 0) {
            line += " count=" + std::to_string(finding.count);
        }
        if (finding.ofCount != 0) {
            line += " of-count=" + std::to_string(finding.ofCount);
        }
        if (finding.from) {
            line += " from=" + number(*finding.from);
        }
        if (!finding.text.empty()) {
            line += " text=" + escaped(shortened(finding.text));
        }
    }
    return line;
}

std::optional<Verdict> parseVerdictLine(std::string_view line)
{
    if (nextWord(line) != head) {
        return std::nullopt;
    }
    const auto outcome = keyIn(outcomes, nextWord(line));
    if (!outcome) {
        return std::nullopt;
    }
    Verdict verdict{*outcome, {}};
    for (std::string_view word = nextWord(line); !word.empty(); word = nextWord(line)) {
        if (word.find('=') != std::string_view::npos) {
            if (verdict.findings.empty() || !parseField(word, verdict.findings.back())) {
                return std::nullopt;
            }
            continue;
        }
        const auto cause = keyIn(causes, word);
        if (!cause) {
            return std::nullopt;
        }
        verdict.findings.push_back({*cause});
    }
    return verdict;
}

} // namespace tavrix::judge
