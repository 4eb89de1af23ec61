// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/publication.h"

#include <charconv>
#include <cstdlib>

namespace tavrix::publication
{

namespace
{

constexpr std::string_view nothing = "nothing";
constexpr std::string_view head = "tavrix-output: ";

// Takes a number and the separator behind it; '\0' stands for the end of the text.
template <typename Number> bool takeNumber(std::string_view& text, char separator, Number& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (separator == '\0') {
        return text.empty();
    }
    if (text.empty() || text.front() != separator) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

std::optional<FileIdentity> parseFile(std::string_view text)
{
    FileIdentity file;
    const bool whole = takeNumber(text, ':', file.device) && takeNumber(text, ':', file.inode) &&
                       takeNumber(text, ':', file.size) && takeNumber(text, '\0', file.modified);
    return whole ? std::optional(file) : std::nullopt;
}

} // namespace

std::string replacesText(const std::optional<FileIdentity>& file)
{
    if (!file) {
        return std::string(nothing);
    }
    return std::to_string(file->device) + ':' + std::to_string(file->inode) + ':' + std::to_string(file->size) + ':' +
           std::to_string(file->modified);
}

Terms readTerms(const char* replaces, const char* place)
{
    Terms terms;
    if (replaces != nullptr) {
        terms.given = true;
        terms.replaceable = parseFile(replaces);
    }
    if (place != nullptr) {
        terms.place = place;
    }
    return terms;
}

Terms termsFromEnvironment()
{
    return readTerms(std::getenv(replacesVariable), std::getenv(placeVariable));
}

bool forbid(const Terms& terms, const FileIdentity& standing)
{
    return terms.given && terms.replaceable != standing;
}

std::string outputLine(const struct stat& output)
{
    return std::string(head) + std::to_string(output.st_dev) + ':' + std::to_string(output.st_ino);
}

std::optional<FileIdentity> parseOutputLine(std::string_view line)
{
    if (!line.starts_with(head)) {
        return std::nullopt;
    }
    line.remove_prefix(head.size());
    FileIdentity file;
    const bool whole = takeNumber(line, ':', file.device) && takeNumber(line, '\0', file.inode);
    return whole ? std::optional(file) : std::nullopt;
}

} // namespace tavrix::publication
