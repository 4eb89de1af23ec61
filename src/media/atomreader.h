// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Reading of QuickTime and ISO base media files atom by atom. Every access is checked against the bytes at hand: a
// damaged file yields less, never more.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tavrix
{

using ByteView = std::span<const std::uint8_t>;

[[nodiscard]] constexpr std::uint32_t atomType(const char (&text)[5])
{
    return (std::uint32_t(std::uint8_t(text[0])) << 24) | (std::uint32_t(std::uint8_t(text[1])) << 16) |
           (std::uint32_t(std::uint8_t(text[2])) << 8) | std::uint32_t(std::uint8_t(text[3]));
}

// Big-endian fields one after the other. After a read past the end everything reads as 0 and ok() is false.
class FieldReader
{
public:
    explicit FieldReader(ByteView bytes, std::size_t position = 0) : bytes_(bytes), position_(position) {}
    [[nodiscard]] bool ok() const { return ok_; }
    void skip(std::size_t count);
    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::int16_t s16() { return static_cast<std::int16_t>(u16()); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::int32_t s32() { return static_cast<std::int32_t>(u32()); }
    std::uint64_t u64() { return number(8); }
    std::int64_t s64() { return static_cast<std::int64_t>(u64()); }

private:
    std::uint64_t number(std::size_t bytes);

    ByteView bytes_;
    std::size_t position_;
    bool ok_ = true;
};

// One atom of a container that lies in memory.
struct Atom {
    std::uint32_t type = 0;
    std::size_t offset = 0; // of the header, from the start of the container's payload
    ByteView whole;         // header included
    ByteView payload;
};

// The container's atoms in order; *wellFormed tells whether they fill it exactly. Zeros may end the list, and up to
// seven bytes may be left over.
[[nodiscard]] std::vector<Atom> childAtoms(ByteView container, bool* wellFormed = nullptr);
// The first child of that type; an empty view when there is none.
[[nodiscard]] ByteView childPayload(ByteView container, std::uint32_t type);

// One atom at the top of a file.
struct FileAtom {
    std::uint32_t type = 0;
    std::uint64_t offset = 0; // of the header
    std::uint64_t headerSize = 0;
    std::uint64_t size = 0; // header included
};

// Random access to a file's bytes; false when the range cannot be read in full.
using ReadAt = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> to)>;

struct FileAtoms {
    std::vector<FileAtom> atoms;
    bool damaged = false; // an atom reaches past the end, or there are bytes that are no atom
};

[[nodiscard]] FileAtoms topLevelAtoms(const ReadAt& readAt, std::uint64_t fileSize);
[[nodiscard]] ReadAt readAtOf(ByteView bytes);
// The descriptor is not owned.
[[nodiscard]] ReadAt readAtOf(int descriptor);

} // namespace tavrix
