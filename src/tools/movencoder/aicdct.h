#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Forward 8x8 transform and quantisation.
namespace tavrix::aic
{

// Factors of one quantiser with the scale of the transform folded in. Like the levels they stand column by column
// (8 * u + v), which spares the transform its second transposition.
using LevelFactors = std::array<float, 64>;
[[nodiscard]] LevelFactors levelFactors(int quantiser);

// Transforms the 8x8 samples at `samples` and writes their rounded levels, column by column.
void transformBlock(const std::uint8_t* samples, std::ptrdiff_t stride, const LevelFactors& factors,
                    std::int32_t* levels);

} // namespace tavrix::aic
