// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/transcriptnames.h"

#include <cctype>
#include <string_view>

namespace tavrix::front
{

namespace
{

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

} // namespace

std::string TranscriptNames::shownIn(std::string line) const
{
    for (const auto* files : {&outputs, &inputs}) {
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

std::string TranscriptNames::removedFrom(std::string line) const
{
    for (const auto* files : {&outputs, &inputs}) {
        for (const FileName& file : *files) {
            if (file.url.starts_with("file:")) {
                line = replacedName(line, file.url, "");
            }
        }
    }
    return line;
}

std::optional<OpenFailure> TranscriptNames::failureIn(const std::string& line) const
{
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        const std::string head = inputs[input].url + ": ";
        if (line.starts_with(head)) {
            return OpenFailure{input, line.substr(head.size())};
        }
    }
    return std::nullopt;
}

} // namespace tavrix::front
