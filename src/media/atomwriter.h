// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Building of atoms in memory, big-endian.

#include "media/atomreader.h"

#include <cstdint>
#include <vector>

namespace tavrix
{

class AtomWriter
{
public:
    void u8(std::uint8_t value) { bytes_.push_back(value); }
    void u16(std::uint16_t value) { number(value, 2); }
    void u32(std::uint32_t value) { number(value, 4); }
    void s32(std::int32_t value) { number(static_cast<std::uint32_t>(value), 4); }
    void u64(std::uint64_t value) { number(value, 8); }
    void raw(ByteView bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

    // Starts an atom; end() closes the innermost one and fills in its size.
    void begin(std::uint32_t type);
    void end();
    // A whole atom with that payload.
    void atom(std::uint32_t type, ByteView payload);

    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return bytes_; }

private:
    void number(std::uint64_t value, int bytes);

    std::vector<std::uint8_t> bytes_;
    std::vector<std::size_t> open_;
};

} // namespace tavrix
