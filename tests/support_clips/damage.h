// SPDX-License-Identifier: GPL-3.0-or-later
// The ways in which files get damaged. Places are shares of the whole, 0 to 1.
#pragma once

#include <cstddef>
#include <string>

namespace tavrix::test
{

[[nodiscard]] std::string cutAt(const std::string& bytes, double place);
[[nodiscard]] std::string zeroed(std::string bytes, double from, double to);
// The same noise every time.
[[nodiscard]] std::string noisy(std::string bytes, double from, double to);
// That many bytes of noise at one place.
[[nodiscard]] std::string scratched(std::string bytes, double place, std::size_t count);

// Of transport streams of packets of that size.
[[nodiscard]] std::string cutBehindPacket(const std::string& bytes, double place, std::size_t packet);
[[nodiscard]] std::string withoutPackets(std::string bytes, double place, std::size_t count, std::size_t packet);
[[nodiscard]] std::string withSwappedPackets(std::string bytes, double place, std::size_t packet);
[[nodiscard]] std::string withMarkedPackets(std::string bytes, double place, std::size_t count, std::size_t packet);

// Puts a number, lowest byte first, at that offset behind the first occurrence of the text.
[[nodiscard]] std::string withNumber(std::string bytes, const std::string& text, std::size_t offset, unsigned value,
                                     bool bigEndian);
// Overwrites the content of every chunk of that name in an AVI file with noise, but for the first `keep`.
[[nodiscard]] std::string withGarbageChunks(std::string bytes, const std::string& name, std::size_t keep);

} // namespace tavrix::test
