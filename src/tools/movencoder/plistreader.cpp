#include "tools/movencoder/plistreader.h"

#include "sys/errortext.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix::movencoder
{

namespace
{

// The preferences may hold a queue of ten thousand paths; nothing sensible is larger than this.
constexpr std::size_t largestFile = std::size_t{64} << 20;

std::optional<std::string> readAll(int fd, std::string& error)
{
    std::string text;
    std::array<char, 65536> chunk;
    for (;;) {
        const ssize_t got = read(fd, chunk.data(), chunk.size());
        if (got == 0) {
            return text;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            error = errorText(errno);
            return std::nullopt;
        }
        text.append(chunk.data(), static_cast<std::size_t>(got));
        if (text.size() > largestFile) {
            error = "too large";
            return std::nullopt;
        }
    }
}

} // namespace

std::optional<std::string> readWholeFile(const std::string& path, std::string& error)
{
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat facts {
    };
    if (fd < 0 || fstat(fd, &facts) != 0) {
        error = errorText(errno);
        if (fd >= 0) {
            close(fd);
        }
        return std::nullopt;
    }
    std::optional<std::string> text;
    if (S_ISREG(facts.st_mode)) {
        text = readAll(fd, error);
    } else {
        error = "not a regular file";
    }
    close(fd);
    return text;
}

PlistPtr parseDictionary(const std::string& text)
{
    static_assert(largestFile <= std::numeric_limits<std::uint32_t>::max());
    plist_t node = nullptr;
    if (text.size() >= 8) {
        plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &node);
    }
    PlistPtr list(node);
    if (list && plist_get_node_type(list.get()) != PLIST_DICT) {
        list.reset();
    }
    return list;
}

std::optional<std::string> textOf(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING) {
        return std::nullopt;
    }
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return text == nullptr ? std::string() : std::string(text, static_cast<std::size_t>(length));
}

std::optional<long long> integerOf(plist_t node)
{
    if (node != nullptr && plist_get_node_type(node) == PLIST_UINT) {
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return static_cast<long long>(value);
    }
    const auto text = textOf(node);
    long long value = 0;
    if (!text || text->empty()) {
        return std::nullopt;
    }
    const auto [end, problem] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (problem != std::errc() || end != text->data() + text->size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> booleanOf(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_BOOLEAN) {
        return std::nullopt;
    }
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

} // namespace tavrix::movencoder
