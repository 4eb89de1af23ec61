// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The bit level of the Apple Intermediate Codec: a writer, most significant bit first, and its variable-length codes.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavrix::aic
{

// Bits of a code word, right-aligned, and how many there are (leading zeros beyond 32 bits included).
struct CodeWord {
    std::uint32_t bits;
    std::uint32_t length;
};

// One of the sixteen codes a slice may choose from: a prefix for value >> k, then the k low bits.
struct Code {
    bool golomb;    // exp-Golomb prefix, otherwise a unary one
    std::uint8_t k; // 0 to 7
};
inline constexpr std::uint32_t codeCount = 16;
inline constexpr std::uint32_t longestUnaryPrefix = 31;

constexpr Code codeOf(std::uint32_t index)
{
    return {index >= 8, static_cast<std::uint8_t>(index & 7)};
}

// A unary prefix ends at 31 zeros, so such a code cannot express every value.
constexpr bool codeHolds(Code code, std::uint32_t value)
{
    return code.golomb || (value >> code.k) <= longestUnaryPrefix;
}

constexpr std::uint32_t codeLength(Code code, std::uint32_t value)
{
    const std::uint32_t prefix = value >> code.k;
    if (code.golomb) {
        return 2U * static_cast<std::uint32_t>(std::bit_width(prefix + 1)) - 1U + code.k;
    }
    return (prefix < longestUnaryPrefix ? prefix + 1U : longestUnaryPrefix) + code.k;
}

constexpr CodeWord codeWord(Code code, std::uint32_t value)
{
    const std::uint32_t low = value & ((1U << code.k) - 1U);
    const std::uint32_t prefix = value >> code.k;
    const std::uint32_t length = codeLength(code, value);
    if (code.golomb) {
        return {(prefix + 1U) << code.k | low, length};
    }
    return {(prefix < longestUnaryPrefix ? 1U << code.k : 0U) | low, length};
}

// The zero of every code is a one followed by k zeros; this is a row of them, as many as fit into 32 bits.
constexpr std::uint32_t longestZeroRow(Code code)
{
    return 32U / (code.k + 1U);
}
constexpr CodeWord zeroRow(Code code, std::uint32_t zeros)
{
    CodeWord row{0, zeros * (code.k + 1U)};
    for (std::uint32_t i = 0; i < zeros; ++i) {
        row.bits = row.bits << (code.k + 1U) | 1U << code.k;
    }
    return row;
}

// Values below this are looked up in tables, larger ones (mostly DC coefficients) are computed. All runs are below it.
inline constexpr std::uint32_t tabledValues = 256;
using CodeTable = std::array<CodeWord, tabledValues>;
const CodeTable& codeTable(std::uint32_t codeIndex);
// The words of levels by their code values: in a band that skips zeros the code value 1 is the code's first word, in
// one that spells them the second. The code value 0 stands for no level and has an empty word.
const CodeTable& levelTable(std::uint32_t codeIndex, bool skips);
// Rows of zeros by their number, up to longestZeroRow().
using ZeroRows = std::array<CodeWord, 33>;
const ZeroRows& zeroRows(std::uint32_t codeIndex);

// Words in a row, together no longer than BitWriter::longestTogether.
struct LongWord {
    std::uint64_t bits;
    std::uint32_t length;
};
constexpr LongWord joined(CodeWord first, CodeWord second)
{
    return {static_cast<std::uint64_t>(first.bits) << second.length | second.bits, first.length + second.length};
}

// Appends bits to memory that the caller has made large enough: `overrun` bytes beyond the end are touched, because
// every word is stored at full width and only the position moves on by what counts.
class BitWriter
{
public:
    static constexpr std::size_t overrun = 8;
    // What fits beside the seven bits that may be pending.
    static constexpr std::uint32_t longestTogether = 57;

    explicit BitWriter(std::uint8_t* at) : at_(at) {}

    void put(CodeWord word)
    {
        held_ = held_ << word.length | word.bits;
        advance(word.length);
    }
    void put(CodeWord first, CodeWord second)
    {
        if (first.length + second.length <= longestTogether) {
            putLong(joined(first, second));
        } else {
            put(first);
            put(second);
        }
    }
    void putLong(LongWord word)
    {
        held_ = held_ << word.length | word.bits;
        advance(word.length);
    }
    // Mostly both fit, and one store takes less time than two.
    void putLong(LongWord first, LongWord second)
    {
        if (first.length + second.length <= longestTogether) {
            putLong({first.bits << second.length | second.bits, first.length + second.length});
        } else {
            putLong(first);
            putLong(second);
        }
    }
    // Ends the last byte with zeros and answers the end of what was written.
    std::uint8_t* finish()
    {
        if (pending_ > 0) {
            put({0, 8 - pending_});
        }
        return at_;
    }

private:
    void advance(std::uint32_t length)
    {
        pending_ += length;
        // Without pending bits what is written does not count; the mask keeps the shift defined.
        std::uint64_t word = held_ << ((64 - pending_) & 63);
        if constexpr (std::endian::native == std::endian::little) {
            word = __builtin_bswap64(word);
        }
        std::memcpy(at_, &word, sizeof word);
        at_ += pending_ >> 3;
        pending_ &= 7;
    }

    std::uint8_t* at_;
    std::uint64_t held_ = 0;
    std::uint32_t pending_ = 0;
};

} // namespace tavrix::aic
