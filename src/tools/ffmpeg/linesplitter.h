// SPDX-License-Identifier: GPL-3.0-or-later
// Lines out of a stream of bytes.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrix::front
{

// Hands on each line as soon as its end has been read, with the carriage return or line feed that ended it. A reader
// sees progress lines, which end with a carriage return, at once.
class LineSplitter
{
public:
    using Receiver = std::function<void(std::string_view line, char end)>;

    explicit LineSplitter(Receiver receiver) : receiver_(std::move(receiver)) {}

    void feed(std::string_view bytes);
    // Hands on what has no line end, with a line feed.
    void finish();

private:
    Receiver receiver_;
    std::string unfinished_;
};

// The pieces in which a line with its end is written: each at most `limit` bytes, cut between characters, so that a
// reader that decodes piece by piece loses nothing.
[[nodiscard]] std::vector<std::string_view> writablePieces(std::string_view text, std::size_t limit);

} // namespace tavrix::front
