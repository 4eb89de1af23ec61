// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The variable-length codes of Apple ProRes: a unary prefix for small values, from a switch point on an exponential
// one.

#include "aic/bits.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tavrix::prores
{

using aic::CodeWord;

struct Code {
    std::uint8_t riceOrder;
    std::uint8_t exponentialOrder;
    std::uint8_t switchPoint; // the longest unary prefix
};

constexpr CodeWord codeWord(Code code, std::uint32_t value)
{
    const std::uint32_t firstExponential = (code.switchPoint + 1U) << code.riceOrder;
    if (value < firstExponential) {
        const std::uint32_t low = value & ((1U << code.riceOrder) - 1U);
        return {1U << code.riceOrder | low, (value >> code.riceOrder) + 1U + code.riceOrder};
    }
    const std::uint32_t rest = value - firstExponential + (1U << code.exponentialOrder);
    const auto width = static_cast<std::uint32_t>(std::bit_width(rest));
    return {rest, width - 1U - code.exponentialOrder + code.switchPoint + 1U + width};
}

// Each value is coded by what came before it: the code of a first coefficient's difference by the difference before, of
// a run by the run before, of a level by the level before; the last entries are for all that is larger.
inline constexpr Code firstCode{5, 6, 0};
inline constexpr std::array<Code, 7> differenceCodes{
    {{0, 1, 0}, {1, 2, 0}, {1, 2, 0}, {2, 3, 1}, {2, 3, 1}, {3, 4, 0}, {3, 4, 0}}};
inline constexpr std::array<Code, 16> runCodes{{{0, 1, 2},
                                                {0, 1, 2},
                                                {0, 1, 1},
                                                {0, 1, 1},
                                                {0, 1, 0},
                                                {1, 2, 1},
                                                {1, 2, 1},
                                                {1, 2, 1},
                                                {1, 2, 1},
                                                {1, 2, 0},
                                                {1, 2, 0},
                                                {1, 2, 0},
                                                {1, 2, 0},
                                                {1, 2, 0},
                                                {1, 2, 0},
                                                {2, 3, 0}}};
inline constexpr std::array<Code, 10> levelCodes{
    {{0, 1, 0}, {0, 2, 2}, {0, 1, 1}, {0, 1, 2}, {0, 1, 0}, {1, 2, 0}, {1, 2, 0}, {1, 2, 0}, {1, 2, 0}, {2, 3, 0}}};
// What precedes the first run and the first level of a plane's slice.
inline constexpr std::uint32_t runBeforeFirst = 4;
inline constexpr std::uint32_t levelBeforeFirst = 2;

// Words of values below this are looked up, the others are computed. They stand by the run or level before, brought
// into range.
inline constexpr std::size_t tabledValues = 64;
using RunTable = std::array<CodeWord, tabledValues>;
extern const std::array<RunTable, runCodes.size()> runTables;
// A level takes two words: without its sign, which is the last bit of the code, and with it.
using LevelTable = std::array<CodeWord, 2 * tabledValues>;
extern const std::array<LevelTable, levelCodes.size()> levelTables;

// A level less one, and whether it is negative.
constexpr CodeWord signedWord(Code code, std::uint32_t value, std::uint32_t sign)
{
    const CodeWord word = codeWord(code, value);
    return {word.bits << 1 | sign, word.length + 1};
}

} // namespace tavrix::prores
