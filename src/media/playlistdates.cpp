// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/playlistdates.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>

namespace tavrix
{

namespace
{

constexpr std::array<unsigned char, 4> firstMarker = {0xFF, 0xFF, 0x1E, 0x20};
constexpr std::array<unsigned char, 2> dateMarker = {0x1E, 0x20};
constexpr std::size_t extensionHeader = 12;
constexpr std::size_t extensionEntry = 12;
constexpr std::size_t markSize = 14;
constexpr std::size_t markExtensionSize = 66;
constexpr std::size_t markDateOffset = 11; // behind the time-zone byte
constexpr std::size_t clipNameSize = 5;
constexpr unsigned int continuation = 6; // the item goes on with the recording of the item before it

// Bytes of a playlist, read big-endian. A position outside gives no value.
class Bytes
{
public:
    Bytes(const unsigned char* data, std::size_t length) : data_(data), length_(length) {}

    [[nodiscard]] bool holds(std::size_t offset, std::size_t count) const
    {
        return offset <= length_ && count <= length_ - offset;
    }
    [[nodiscard]] std::optional<std::uint32_t> number(std::size_t offset, std::size_t size) const
    {
        if (!holds(offset, size)) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = (value << 8U) | data_[offset + i];
        }
        return value;
    }
    [[nodiscard]] bool holdsText(std::size_t offset, const char* text) const
    {
        const std::size_t size = std::strlen(text);
        return holds(offset, size) && std::memcmp(data_ + offset, text, size) == 0;
    }
    [[nodiscard]] const unsigned char* at(std::size_t offset) const { return data_ + offset; }

private:
    const unsigned char* data_;
    std::size_t length_;
};

struct PlayItem {
    std::string clip; // five digits, "" when the name is something else
    bool continues = false;
    std::string date; // "clip-..." text, "" while unknown
};

bool isBcdWithin(unsigned char byte, int low, int high)
{
    const int tens = byte >> 4U;
    const int ones = byte & 0x0FU;
    const int value = tens * 10 + ones;
    return tens <= 9 && ones <= 9 && value >= low && value <= high;
}

// Seven binary-coded bytes CC YY MM DD hh mm ss as text, "" when they are no date.
std::string dateText(const unsigned char* d)
{
    const bool valid = isBcdWithin(d[0], 19, 99) && isBcdWithin(d[1], 0, 99) && isBcdWithin(d[2], 1, 12) &&
                       isBcdWithin(d[3], 1, 31) && isBcdWithin(d[4], 0, 23) && isBcdWithin(d[5], 0, 59) &&
                       isBcdWithin(d[6], 0, 59);
    if (!valid) {
        return {};
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "clip-%.2X%.2X-%.2X-%.2X %.2X;%.2X;%.2X", d[0], d[1], d[2], d[3], d[4],
                  d[5], d[6]);
    return text.data();
}

std::string clipName(const Bytes& bytes, std::size_t offset)
{
    if (!bytes.holds(offset, clipNameSize)) {
        return {};
    }
    std::string name(reinterpret_cast<const char*>(bytes.at(offset)), clipNameSize);
    const bool digits = std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits ? name : std::string();
}

std::vector<PlayItem> playItems(const Bytes& bytes)
{
    std::vector<PlayItem> items;
    const std::size_t list = bytes.number(8, 4).value_or(0);
    const std::uint32_t count = bytes.number(list + 6, 2).value_or(0);
    std::size_t offset = list + 10;
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto size = bytes.number(offset, 2);
        const auto flags = bytes.number(offset + 2 + clipNameSize + 4, 2);
        if (!size || !flags) {
            break;
        }
        items.push_back({clipName(bytes, offset + 2), (*flags & 0x0FU) == continuation, {}});
        offset += 2 + std::size_t{*size};
    }
    return items;
}

// Position of the mark extensions: behind the "PLEX" block that the extension data names.
std::optional<std::size_t> markExtensions(const Bytes& bytes)
{
    const std::size_t extension = bytes.number(16, 4).value_or(0);
    if (extension == 0) {
        return std::nullopt;
    }
    std::size_t block = extension + bytes.number(extension + 4, 4).value_or(0);
    const std::uint32_t entries = bytes.number(extension + 11, 1).value_or(0);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::size_t entry = extension + extensionHeader + std::size_t{i} * extensionEntry;
        if (bytes.number(entry, 2).value_or(0) == 0x1000) {
            block = extension + bytes.number(entry + 4, 4).value_or(0);
            break;
        }
    }
    if (!bytes.holdsText(block, "PLEX")) {
        return std::nullopt;
    }
    const auto start = bytes.number(block + 8, 4);
    return start ? std::optional<std::size_t>(block + *start) : std::nullopt;
}

// Gives each item the date of its first mark; an item that continues the one before it has no mark of its own.
void dateItems(const Bytes& bytes, std::size_t extensions, std::vector<PlayItem>& items)
{
    const std::size_t marks = bytes.number(12, 4).value_or(0);
    const std::uint32_t markCount = bytes.number(marks + 4, 2).value_or(0);
    const std::uint32_t dateCount = bytes.number(extensions + 4, 2).value_or(0);
    for (std::uint32_t i = 0; i < std::min(markCount, dateCount); ++i) {
        const std::size_t mark = marks + 6 + std::size_t{i} * markSize;
        const std::size_t date = extensions + 6 + std::size_t{i} * markExtensionSize + markDateOffset;
        const auto item = bytes.number(mark + 2, 2);
        if (!item || !bytes.holds(date, 7)) {
            break;
        }
        const bool entryMark = bytes.number(mark + 1, 1).value_or(0) == 1;
        if (entryMark && *item < items.size() && items[*item].date.empty()) {
            items[*item].date = dateText(bytes.at(date));
        }
    }
    for (std::size_t i = 1; i < items.size(); ++i) {
        if (items[i].continues && items[i].date.empty()) {
            items[i].date = items[i - 1].date;
        }
    }
}

struct Descriptor {
    int value = -1;
    explicit Descriptor(int descriptor) : value(descriptor) {}
    ~Descriptor()
    {
        if (value >= 0) {
            ::close(value);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
};

std::vector<unsigned char> readBytes(int descriptor, std::size_t size)
{
    std::vector<unsigned char> bytes(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::read(descriptor, bytes.data() + done, size - done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

void openError(std::FILE* err, const std::string& name, const char* reason)
{
    std::fprintf(err, "Error opening file:%s:%s\n", name.c_str(), reason);
}

// False when the entry's size cannot be read.
bool printPlaylist(const std::string& name, std::FILE* out, std::FILE* err)
{
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0) {
        std::fprintf(err, "Error getting file stats:%s:%s\n", name.c_str(), std::strerror(errno));
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        openError(err, name, "not a regular file");
        return true;
    }
    if (static_cast<std::uintmax_t>(status.st_size) > playlistLimit) {
        openError(err, name, std::strerror(EFBIG));
        return true;
    }
    const Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.value < 0) {
        openError(err, name, std::strerror(errno));
        return true;
    }
    const std::vector<unsigned char> bytes = readBytes(file.value, static_cast<std::size_t>(status.st_size));
    if (bytes.size() != static_cast<std::size_t>(status.st_size)) {
        std::fprintf(err,
                     "Could not read all the characters in the file:Expecting %lld characters:Read %lld characters\n",
                     static_cast<long long>(status.st_size), static_cast<long long>(bytes.size()));
    }
    for (const std::string& line : playlistLines(bytes.data(), bytes.size())) {
        std::fputs(line.c_str(), out);
    }
    return true;
}

} // namespace

const unsigned char* _u_strstr(const unsigned char* haystack, const unsigned char* needle, std::size_t haystackLength,
                               std::size_t needleLength)
{
    if (haystack == nullptr || needle == nullptr || needleLength == 0 || haystackLength <= needleLength) {
        return nullptr;
    }
    for (std::size_t i = 0; i < haystackLength - needleLength; ++i) {
        if (std::memcmp(haystack + i, needle, needleLength) == 0) {
            return haystack + i;
        }
    }
    return nullptr;
}

std::vector<std::string> playlistLinesByMarker(const unsigned char* bytes, std::size_t length)
{
    std::vector<std::string> lines;
    const unsigned char* first = _u_strstr(bytes, firstMarker.data(), length, firstMarker.size());
    if (first == nullptr) {
        return lines;
    }
    const unsigned char* end = bytes + length;
    const unsigned char* from = first + firstMarker.size();
    while (const unsigned char* q =
               _u_strstr(from, dateMarker.data(), static_cast<std::size_t>(end - from), dateMarker.size())) {
        if (end - q <= 7) {
            break;
        }
        std::array<char, 64> line{};
        std::snprintf(line.data(), line.size(), "%.3d%.2d : clip-20%.2X-%.2X-%.2X %.2X;%.2X;%.2X\n", q[-2], q[-1], q[2],
                      q[3], q[4], q[5], q[6], q[7]);
        lines.emplace_back(line.data());
        from = q + dateMarker.size();
    }
    return lines;
}

std::vector<std::string> playlistLinesByStructure(const unsigned char* data, std::size_t length)
{
    const Bytes bytes(data, length);
    std::vector<std::string> lines;
    if (data == nullptr || !bytes.holdsText(0, "MPLS")) {
        return lines;
    }
    const auto extensions = markExtensions(bytes);
    if (!extensions) {
        return lines;
    }
    std::vector<PlayItem> items = playItems(bytes);
    dateItems(bytes, *extensions, items);
    for (const PlayItem& item : items) {
        if (!item.clip.empty() && !item.date.empty()) {
            lines.push_back(item.clip + " : " + item.date + "\n");
        }
    }
    return lines;
}

std::vector<std::string> playlistLines(const unsigned char* bytes, std::size_t length)
{
    std::vector<std::string> lines = playlistLinesByMarker(bytes, length);
    // Cameras with a time zone set write another byte before the date, which the marker does not match.
    return lines.empty() ? playlistLinesByStructure(bytes, length) : lines;
}

bool printPlaylistDates(const std::string& folder, std::FILE* out, std::FILE* err)
{
    if (::chdir(folder.c_str()) != 0) {
        std::fprintf(err, "Cannot change directory:%s:%s\n", folder.c_str(), std::strerror(errno));
        return false;
    }
    DIR* directory = ::opendir(".");
    if (directory == nullptr) {
        std::fprintf(err, "Error reading directory:%s:%s\n", folder.c_str(), std::strerror(errno));
        return false;
    }
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(directory)) {
        const std::string name = entry->d_name;
        if (name.ends_with(".MPL")) {
            names.push_back(name);
        }
    }
    const int listingError = errno;
    ::closedir(directory);
    if (listingError != 0) {
        std::fprintf(err, "Error reading directory:%s:%s\n", folder.c_str(), std::strerror(listingError));
        return false;
    }
    std::sort(names.begin(), names.end());
    return std::all_of(names.begin(), names.end(),
                       [out, err](const std::string& name) { return printPlaylist(name, out, err); });
}

void getDateCreation(const std::string& folder, std::FILE* out, std::FILE* err)
{
    printPlaylistDates(folder, out, err);
}

} // namespace tavrix
