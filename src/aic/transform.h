#pragma once

// Forward 8x8 transform and quantisation.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tavrix::aic
{

// Factors of one quantiser with the scale of the transform folded in. Like the levels they stand column by column
// (8 * u + v), which spares the transform its second transposition.
using LevelFactors = std::array<float, 64>;
[[nodiscard]] LevelFactors levelFactors(int quantiser);

// Transforms the 8x8 samples at `samples` and writes their rounded levels, column by column.
using Transform = void (*)(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors,
                           std::int32_t* levels);

// The forms give equal results. The plain one is what the others are measured by.
[[nodiscard]] Transform plainTransform();
// Four columns at a time, on any processor with such registers.
[[nodiscard]] Transform vectorTransform();
// The fastest one on this processor.
[[nodiscard]] Transform bestTransform();

} // namespace tavrix::aic
