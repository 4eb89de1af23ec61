// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Forward 8x8 transform and quantisation, up to the order in which coefficients are coded.

#include "aic/tables.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tavrix::aic
{

// Factors of one quantiser with the scale of the transform folded in. They stand column by column (8 * u + v), which
// spares the transform its second transposition.
using LevelFactors = std::array<float, 64>;
[[nodiscard]] LevelFactors levelFactors(int quantiser);

// A level as the codes count it: 0, -1, 1, -2, 2 and so on are 0, 1, 2, 3, 4.
using CodeValue = std::uint16_t;
constexpr CodeValue codeValue(std::int32_t level)
{
    return static_cast<CodeValue>(level < 0 ? -2 * level - 1 : 2 * level);
}

// Transforms the 8x8 samples at `samples` and writes the code values of their rounded levels, quarter by quarter in the
// order of a tile: quarter q goes to `values` + `places`[q]. `turned` walks the tiles backwards.
using Transform = void (*)(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors,
                           const std::uint16_t* places, bool turned, CodeValue* values);

// The forms give equal results. The plain one is what the others are measured by.
[[nodiscard]] Transform plainTransform();
// Four columns at a time, on any processor with such registers.
[[nodiscard]] Transform vectorTransform();
// The fastest one on this processor.
[[nodiscard]] Transform bestTransform();

} // namespace tavrix::aic
