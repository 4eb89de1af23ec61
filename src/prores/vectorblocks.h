// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The transform of eight blocks as vectors; what they become depends on the processor that a file is compiled for.

#include "prores/transform.h"
#include "prores/transformlanes.h"

#include <cstddef>
#include <cstdint>

namespace tavrix::prores
{

using Lanes = std::int32_t __attribute__((vector_size(32)));
using Words = std::uint16_t __attribute__((vector_size(16)));
using Coefficients = std::int16_t __attribute__((vector_size(16)));

// Samples of one line of eight blocks: from block by block to place by place.
[[gnu::always_inline]] inline void loadLine(const std::uint16_t* const* blocks, std::ptrdiff_t offset, Lanes* line)
{
    Words v[8];
    Words w[8];
    for (std::ptrdiff_t i = 0; i < 8; ++i) {
        __builtin_memcpy(&v[i], blocks[i] + offset, sizeof v[i]);
    }
    for (std::ptrdiff_t i = 0; i < 4; ++i) {
        w[2 * i] = __builtin_shufflevector(v[i], v[i + 4], 0, 8, 1, 9, 2, 10, 3, 11);
        w[2 * i + 1] = __builtin_shufflevector(v[i], v[i + 4], 4, 12, 5, 13, 6, 14, 7, 15);
    }
    for (std::ptrdiff_t i = 0; i < 4; ++i) {
        v[2 * i] = __builtin_shufflevector(w[i], w[i + 4], 0, 8, 1, 9, 2, 10, 3, 11);
        v[2 * i + 1] = __builtin_shufflevector(w[i], w[i + 4], 4, 12, 5, 13, 6, 14, 7, 15);
    }
    for (std::ptrdiff_t i = 0; i < 4; ++i) {
        w[2 * i] = __builtin_shufflevector(v[i], v[i + 4], 0, 8, 1, 9, 2, 10, 3, 11);
        w[2 * i + 1] = __builtin_shufflevector(v[i], v[i + 4], 4, 12, 5, 13, 6, 14, 7, 15);
    }
    for (std::ptrdiff_t i = 0; i < 8; ++i) {
        line[i] = __builtin_convertvector(w[i], Lanes);
    }
}

[[gnu::always_inline]] inline void transformBlocks(const std::uint16_t* const* blocks, std::ptrdiff_t stride,
                                                   std::int16_t* coefficients)
{
    Lanes values[64];
    for (std::ptrdiff_t line = 0; line < 8; ++line) {
        loadLine(blocks, line * stride, values + 8 * line);
        transformLanes<true, 1>(values + 8 * line);
    }
    for (std::ptrdiff_t column = 0; column < 8; ++column) {
        transformLanes<false, 8>(values + column);
    }
    for (std::size_t i = 0; i < 64; ++i) {
        const Coefficients narrow = __builtin_convertvector(values[i], Coefficients);
        __builtin_memcpy(coefficients + blocksOfSlice * i, &narrow, sizeof narrow);
    }
}

} // namespace tavrix::prores
