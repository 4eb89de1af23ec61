// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Quantisation and entropy coding of one plane's share of a slice.

#include "prores/transform.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavrix::prores
{

// The steps of the 64 coefficients at one quantiser, made for division by multiplication.
class Steps
{
public:
    Steps(std::span<const std::uint8_t, 64> matrix, int quantiser);

    [[nodiscard]] int firstStep() const { return firstStep_; }

private:
    friend class PlaneCoder;
    // A number below 2^15, times the factor, without the lowest 16 + shift bits, is the number divided by the step.
    struct Reciprocal {
        std::uint16_t factor;
        std::uint16_t shift;
    };
    std::array<Reciprocal, 64> reciprocals_;
    int firstStep_;
};

// The coefficients of a plane's share, of up to blocksOfSlice blocks; coefficient i of all blocks stands at
// blocksOfSlice * i.
using PlaneCoefficients = std::array<std::int16_t, 64 * blocksOfSlice>;

class PlaneCoder
{
public:
    // No share is longer, in bytes, whatever is in it.
    static constexpr std::size_t longest = 64 * blocksOfSlice * 6 + 16;

    // Writes the share of the first `blocks` blocks and answers the end of what was written; `at` has room for the
    // longest one.
    static std::uint8_t* write(const PlaneCoefficients& coefficients, std::size_t blocks, const Steps& steps,
                               std::uint8_t* at);
};

} // namespace tavrix::prores
