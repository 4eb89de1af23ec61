// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_clips/damage.h"

#include <algorithm>
#include <random>

namespace tavrix::test
{

namespace
{

constexpr std::size_t plainPacket = 188;

std::size_t at(const std::string& bytes, double place)
{
    return static_cast<std::size_t>(static_cast<double>(bytes.size()) * place);
}

std::size_t packetAt(const std::string& bytes, double place, std::size_t packet)
{
    return at(bytes, place) / packet * packet;
}

void putNoise(std::string& bytes, std::size_t from, std::size_t count)
{
    std::mt19937 engine(static_cast<unsigned>(from));
    for (std::size_t i = from; i < std::min(bytes.size(), from + count); ++i) {
        bytes[i] = static_cast<char>(engine());
    }
}

} // namespace

std::string cutAt(const std::string& bytes, double place)
{
    return bytes.substr(0, at(bytes, place));
}

std::string zeroed(std::string bytes, double from, double to)
{
    std::fill(bytes.begin() + std::ptrdiff_t(at(bytes, from)), bytes.begin() + std::ptrdiff_t(at(bytes, to)), '\0');
    return bytes;
}

std::string noisy(std::string bytes, double from, double to)
{
    const std::size_t start = at(bytes, from);
    putNoise(bytes, start, at(bytes, to) - start);
    return bytes;
}

std::string scratched(std::string bytes, double place, std::size_t count)
{
    putNoise(bytes, at(bytes, place), count);
    return bytes;
}

std::string cutBehindPacket(const std::string& bytes, double place, std::size_t packet)
{
    return bytes.substr(0, packetAt(bytes, place, packet));
}

std::string withoutPackets(std::string bytes, double place, std::size_t count, std::size_t packet)
{
    return bytes.erase(packetAt(bytes, place, packet), count * packet);
}

std::string withSwappedPackets(std::string bytes, double place, std::size_t packet)
{
    const auto first = bytes.begin() + std::ptrdiff_t(packetAt(bytes, place, packet));
    const auto size = std::ptrdiff_t(packet);
    std::swap_ranges(first, first + size, first + 3 * size);
    return bytes;
}

std::string withMarkedPackets(std::string bytes, double place, std::size_t count, std::size_t packet)
{
    constexpr char damaged = static_cast<char>(0x80);
    const std::size_t first = packetAt(bytes, place, packet) + packet - plainPacket;
    for (std::size_t i = 0; i < count; ++i) {
        bytes[first + i * packet + 1] = static_cast<char>(bytes[first + i * packet + 1] | damaged);
    }
    return bytes;
}

std::string withNumber(std::string bytes, const std::string& text, std::size_t offset, unsigned value, bool bigEndian)
{
    const std::size_t place = bytes.find(text) + text.size() + offset;
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(place + (bigEndian ? 3 - i : i)) = static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

std::string withGarbageChunks(std::string bytes, const std::string& name, std::size_t keep)
{
    constexpr std::size_t header = 8;
    std::size_t number = 0;
    const std::size_t index = std::min(bytes.size(), bytes.rfind("idx1"));
    for (std::size_t place = bytes.find(name); place < index; place = bytes.find(name, place + header)) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            size |= std::size_t(static_cast<unsigned char>(bytes[place + 4 + i])) << (8 * i);
        }
        if (++number > keep) {
            putNoise(bytes, place + header, std::min(size, bytes.size() - place - header));
        }
        place += size;
    }
    return bytes;
}

} // namespace tavrix::test
