// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Forward 8x8 transform of eight blocks side by side, in integers.

#include <cstddef>
#include <cstdint>

namespace tavrix::prores
{

inline constexpr std::size_t blocksTogether = 8;
// Coefficient i (8 * v + u) of the blocks of a plane's slice stands at blocksOfSlice * i.
inline constexpr std::size_t blocksOfSlice = 32;

// Transforms the 8x8 samples at each of `blocks`, whose lines are `stride` samples apart.
using Transform = void (*)(const std::uint16_t* const* blocks, std::ptrdiff_t stride, std::int16_t* coefficients);

// The forms give equal results. The plain one is what the others are measured by.
[[nodiscard]] Transform plainTransform();
// Eight blocks in vectors, on any processor.
[[nodiscard]] Transform vectorTransform();
// The fastest one on this processor.
[[nodiscard]] Transform bestTransform();

} // namespace tavrix::prores
