// SPDX-License-Identifier: GPL-3.0-or-later
// What the targets share: values taken from a fuzzer's bytes, and promises that end the run when they do not hold.
#pragma once

#include "media/atomreader.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::fuzz
{

inline void require(bool promise)
{
    if (!promise) {
        std::abort();
    }
}

inline std::string_view textOf(ByteView bytes)
{
    return bytes.empty() ? std::string_view()
                         : std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// Pieces between separators; an empty text is one empty piece.
inline std::vector<std::string> pieces(std::string_view text, char separator)
{
    std::vector<std::string> found;
    for (;;) {
        const auto end = text.find(separator);
        found.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return found;
        }
        text.remove_prefix(end + 1);
    }
}

// Takes values off the front; a source that has run out gives zeros.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    std::uint8_t byte()
    {
        if (bytes_.empty()) {
            return 0;
        }
        const std::uint8_t value = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return value;
    }
    bool flag() { return (byte() & 1) != 0; }
    std::int64_t number()
    {
        std::uint64_t value = 0;
        const int bytes = byte() % 9;
        for (int i = 0; i < bytes; ++i) {
            value = value << 8 | byte();
        }
        return static_cast<std::int64_t>(value);
    }
    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    [[nodiscard]] ByteView rest() const { return bytes_; }
    [[nodiscard]] std::string_view text() const { return textOf(bytes_); }

private:
    ByteView bytes_;
};

} // namespace tavrix::fuzz
