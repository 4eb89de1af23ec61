// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/linesplitter.h"

#include <algorithm>

namespace tavrix::front
{

void LineSplitter::feed(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto end = bytes.find_first_of("\r\n");
        if (end == std::string_view::npos) {
            unfinished_ += bytes;
            return;
        }
        if (unfinished_.empty()) {
            receiver_(bytes.substr(0, end), bytes[end]);
        } else {
            unfinished_ += bytes.substr(0, end);
            receiver_(std::exchange(unfinished_, {}), bytes[end]);
        }
        bytes.remove_prefix(end + 1);
    }
}

void LineSplitter::finish()
{
    if (!unfinished_.empty()) {
        receiver_(std::exchange(unfinished_, {}), '\n');
    }
}

std::vector<std::string_view> writablePieces(std::string_view text, std::size_t limit)
{
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        std::size_t length = std::min(limit, text.size());
        const auto continues = [&](std::size_t i) {
            return (static_cast<unsigned char>(text[i]) & 0xc0) == 0x80;
        };
        while (length < text.size() && length + 3 > limit && length > 1 && continues(length)) {
            --length;
        }
        pieces.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return pieces;
}

} // namespace tavrix::front
