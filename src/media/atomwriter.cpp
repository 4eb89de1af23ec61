// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/atomwriter.h"

namespace tavrix
{

void AtomWriter::number(std::uint64_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        bytes_.push_back(static_cast<std::uint8_t>((value >> shift) & 0xFFU));
    }
}

void AtomWriter::begin(std::uint32_t type)
{
    open_.push_back(bytes_.size());
    u32(0);
    u32(type);
}

void AtomWriter::end()
{
    const std::size_t start = open_.back();
    open_.pop_back();
    // A movie atom stays far below four gigabytes: its source was limited.
    const auto size = static_cast<std::uint32_t>(bytes_.size() - start);
    for (std::size_t index = 0; index < 4; ++index) {
        bytes_[start + index] = static_cast<std::uint8_t>((size >> (24 - 8 * index)) & 0xFFU);
    }
}

void AtomWriter::atom(std::uint32_t type, ByteView payload)
{
    begin(type);
    raw(payload);
    end();
}

} // namespace tavrix
