// SPDX-License-Identifier: GPL-3.0-or-later
// Small clips made with the installed ffmpeg, and the ways in which files get damaged. Free of Qt.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::test
{

// Runs the installed ffmpeg, quiet and overwriting, with these words; false, with a failure of the running test, when
// it does not end well.
bool runFfmpeg(std::vector<std::string> words);
// The same where a bad end is no failure of the test.
bool runFfmpegUnchecked(std::vector<std::string> words);

// Everything in the file; "" with a failure of the running test when it cannot be read.
[[nodiscard]] std::string bytesOf(const std::string& path);
void putBytes(const std::string& path, std::string_view bytes);

[[nodiscard]] std::uint32_t bigEndian32(std::string_view bytes, std::size_t offset);
void setBigEndian32(std::string& bytes, std::size_t offset, std::uint32_t value);

} // namespace tavrix::test
