// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/writtendate.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

namespace tavrix
{

namespace
{

constexpr std::size_t exifDateLength = 19;
constexpr int mostZoneMinutes = 14 * 60;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r' || character == '\n' || character == '\0';
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes a text apart from its front. A step that does not fit leaves it as it was.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : text_(text) {}

    [[nodiscard]] bool atEnd() const { return text_.empty(); }
    bool skipBlanks()
    {
        const std::size_t before = text_.size();
        while (!text_.empty() && isBlank(text_.front())) {
            text_.remove_prefix(1);
        }
        return text_.size() != before;
    }
    bool take(std::string_view characters)
    {
        const bool fits = !text_.empty() && characters.find(text_.front()) != std::string_view::npos;
        if (fits) {
            text_.remove_prefix(1);
        }
        return fits;
    }
    // A run of digits of a length between the two; no value otherwise.
    std::optional<int> number(std::size_t fewest, std::size_t most)
    {
        std::size_t length = 0;
        int value = 0;
        while (length < most && length < text_.size() && isDigit(text_[length])) {
            value = value * 10 + (text_[length] - '0');
            ++length;
        }
        if (length < fewest) {
            return std::nullopt;
        }
        text_.remove_prefix(length);
        return value;
    }
    std::string_view word()
    {
        const auto end = std::find_if_not(text_.begin(), text_.end(), isLetter);
        const std::string_view found = text_.substr(0, static_cast<std::size_t>(end - text_.begin()));
        text_.remove_prefix(found.size());
        return found;
    }
    std::string_view untilBlank()
    {
        const auto end = std::find_if(text_.begin(), text_.end(), [](char c) { return isBlank(c) || c == ','; });
        const std::string_view found = text_.substr(0, static_cast<std::size_t>(end - text_.begin()));
        text_.remove_prefix(found.size());
        return found;
    }

private:
    std::string_view text_;
};

std::string lowered(std::string_view text)
{
    std::string result(text);
    for (char& character : result) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return result;
}

// 1 to 12 by the first three letters of the English name, else 0.
int monthNumber(std::string_view word)
{
    constexpr std::array<std::string_view, 12> names = {"jan", "feb", "mar", "apr", "may", "jun",
                                                        "jul", "aug", "sep", "oct", "nov", "dec"};
    const std::string name = lowered(word).substr(0, 3);
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
}

// "Z", "UTC", "GMT", "+0100", "+01:00" or "+01". False when the rest is something else; nothing at all is fine.
bool readZone(Scanner& scanner, WrittenDate& date)
{
    scanner.skipBlanks();
    if (scanner.atEnd()) {
        return true;
    }
    Scanner named = scanner;
    const std::string name = lowered(named.word());
    if (name == "z" || name == "utc" || name == "gmt") {
        date.zoneMinutes = 0;
        scanner = named;
        return true;
    }
    const bool east = scanner.take("+");
    if (!east && !scanner.take("-")) {
        return false;
    }
    const std::optional<int> hours = scanner.number(2, 2);
    scanner.take(":");
    const int minutes = scanner.number(2, 2).value_or(0);
    if (!hours || minutes > 59 || *hours * 60 + minutes > mostZoneMinutes) {
        return false;
    }
    date.zoneMinutes = (*hours * 60 + minutes) * (east ? 1 : -1);
    return true;
}

// The twelve-hour clock: 12 AM is midnight, 12 PM is noon.
bool readHalfOfDay(Scanner& scanner, ClockTime& clock)
{
    Scanner ahead = scanner;
    ahead.skipBlanks();
    const std::string word = lowered(ahead.word());
    if (word != "am" && word != "pm" && word != "a" && word != "p") {
        return true;
    }
    if (clock.hour < 1 || clock.hour > 12) {
        return false;
    }
    clock.hour = clock.hour % 12 + (word.front() == 'p' ? 12 : 0);
    scanner = ahead;
    return true;
}

// "15:04", "15:04:05", "15:04:05.123", "3:04PM"; cameras fill with blanks where a digit is missing.
bool readTime(Scanner& scanner, ClockTime& clock)
{
    const std::optional<int> hour = scanner.number(1, 2);
    if (!hour || !scanner.take(":")) {
        return false;
    }
    scanner.skipBlanks();
    const std::optional<int> minute = scanner.number(1, 2);
    if (!minute) {
        return false;
    }
    clock.hour = *hour;
    clock.minute = *minute;
    if (scanner.take(":")) {
        scanner.skipBlanks();
        const std::optional<int> second = scanner.number(1, 2);
        if (!second) {
            return false;
        }
        clock.second = *second;
        if (scanner.take(".,")) {
            scanner.number(1, 9);
        }
    }
    return readHalfOfDay(scanner, clock);
}

std::optional<WrittenDate> checked(const WrittenDate& date, const Scanner& rest)
{
    return rest.atEnd() && isOnCalendar(date.clock) ? std::optional<WrittenDate>(date) : std::nullopt;
}

std::optional<WrittenDate> numericDate(std::string_view text)
{
    Scanner scanner(text);
    WrittenDate date;
    const std::optional<int> year = scanner.number(4, 4);
    if (!year || !scanner.take(":/-.")) {
        return std::nullopt;
    }
    scanner.skipBlanks();
    const std::optional<int> month = scanner.number(1, 2);
    if (!month || !scanner.take(":/-.")) {
        return std::nullopt;
    }
    scanner.skipBlanks();
    const std::optional<int> day = scanner.number(1, 2);
    scanner.take("/");
    if (!day || (!scanner.take("Tt") && !scanner.skipBlanks())) {
        return std::nullopt;
    }
    scanner.skipBlanks();
    date.clock.year = *year;
    date.clock.month = *month;
    date.clock.day = *day;
    if (!readTime(scanner, date.clock) || !readZone(scanner, date)) {
        return std::nullopt;
    }
    return checked(date, scanner);
}

// "20120102T150405.000Z"
std::optional<WrittenDate> compactDate(std::string_view text)
{
    Scanner scanner(text);
    WrittenDate date;
    const std::optional<int> day = scanner.number(8, 8);
    if (!day || (!scanner.take("Tt") && !scanner.skipBlanks())) {
        return std::nullopt;
    }
    const std::optional<int> time = scanner.number(6, 6);
    if (!time) {
        return std::nullopt;
    }
    if (scanner.take(".,")) {
        scanner.number(1, 9);
    }
    date.clock = {*day / 10000, *day / 100 % 100, *day % 100, *time / 10000, *time / 100 % 100, *time % 100};
    return readZone(scanner, date) ? checked(date, scanner) : std::nullopt;
}

// The month, or a name that tells a zone. Names of days and of other zones say nothing here.
bool readWord(const std::string& word, WrittenDate& date)
{
    if (word == "am" || word == "pm") {
        return false;
    }
    if (word == "z" || word == "utc" || word == "gmt") {
        date.zoneMinutes = 0;
    } else if (date.clock.month == 0) {
        date.clock.month = monthNumber(word);
    }
    return true;
}

// One piece of a date with the month's name. False for what has no place in it.
bool readPiece(std::string_view piece, WrittenDate& date)
{
    Scanner scanner(piece);
    if (isLetter(piece.front())) {
        return readWord(lowered(piece), date);
    }
    if (piece.front() == '+' || piece.front() == '-') {
        return readZone(scanner, date) && scanner.atEnd();
    }
    if (piece.find(':') != std::string_view::npos) {
        return readTime(scanner, date.clock) && scanner.atEnd();
    }
    const std::optional<int> number = scanner.number(1, 4);
    if (!number || !scanner.atEnd()) {
        return false;
    }
    int& place = piece.size() == 4 ? date.clock.year : date.clock.day;
    const bool fresh = place == 0 && piece.size() != 3;
    place = *number;
    return fresh;
}

// "Mon Jan 02 15:04:05 2012", "Mon, 02 Jan 2012 15:04:05 +0100".
std::optional<WrittenDate> namedDate(std::string_view text)
{
    Scanner scanner(text);
    WrittenDate date;
    bool timed = false;
    while (!scanner.atEnd()) {
        const std::string_view piece = scanner.untilBlank();
        if (!piece.empty() && !readPiece(piece, date)) {
            return std::nullopt;
        }
        timed = timed || piece.find(':') != std::string_view::npos;
        while (scanner.skipBlanks() || scanner.take(",")) {
        }
    }
    return timed ? checked(date, scanner) : std::nullopt;
}

} // namespace

bool isOnCalendar(const ClockTime& clock)
{
    using namespace std::chrono;
    const year_month_day date(year(clock.year), month(static_cast<unsigned>(std::clamp(clock.month, 0, 99))),
                              day(static_cast<unsigned>(std::clamp(clock.day, 0, 99))));
    return clock.year >= 1 && clock.year <= 9999 && date.ok() && clock.hour >= 0 && clock.hour <= 23 &&
           clock.minute >= 0 && clock.minute <= 59 && clock.second >= 0 && clock.second <= 59;
}

std::int64_t secondsOfClock(const ClockTime& clock)
{
    using namespace std::chrono;
    const sys_days date(year(clock.year) / month(static_cast<unsigned>(clock.month)) /
                        day(static_cast<unsigned>(clock.day)));
    const std::int64_t days = date.time_since_epoch().count();
    return days * 86400 + clock.hour * 3600 + clock.minute * 60 + clock.second;
}

ClockTime clockOfSeconds(std::int64_t seconds)
{
    using namespace std::chrono;
    static const std::int64_t first = secondsOfClock({1, 1, 1, 0, 0, 0});
    static const std::int64_t last = secondsOfClock({9999, 12, 31, 23, 59, 59});
    const std::chrono::seconds since(std::clamp(seconds, first, last));
    const sys_days date = floor<days>(sys_time<std::chrono::seconds>(since));
    const year_month_day calendar(date);
    const auto rest = static_cast<int>((since - date.time_since_epoch()).count());
    return {int(calendar.year()),
            static_cast<int>(unsigned(calendar.month())),
            static_cast<int>(unsigned(calendar.day())),
            rest / 3600,
            rest / 60 % 60,
            rest % 60};
}

std::optional<WrittenDate> writtenDate(std::string_view text)
{
    const std::string_view date = trimmed(text);
    for (const auto& read : {numericDate, compactDate, namedDate}) {
        if (const std::optional<WrittenDate> found = read(date)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<WrittenDate> firstExifDate(std::string_view bytes)
{
    constexpr std::string_view shape = "dddd:dd:dd dd:dd:dd";
    static_assert(shape.size() == exifDateLength);
    for (std::size_t start = 0; start + exifDateLength <= bytes.size(); ++start) {
        const std::string_view piece = bytes.substr(start, exifDateLength);
        const bool fits = std::equal(shape.begin(), shape.end(), piece.begin(), [](char wanted, char found) {
            return wanted == 'd' ? isDigit(found) : wanted == found;
        });
        if (!fits) {
            continue;
        }
        if (const std::optional<WrittenDate> date = numericDate(piece)) {
            return date;
        }
    }
    return std::nullopt;
}

} // namespace tavrix
