// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/transform.h"

#include "prores/vectorblocks.h"
#include "prores/widetransform.h"

namespace tavrix::prores
{

namespace
{

void transformPlain(const std::uint16_t* const* blocks, std::ptrdiff_t stride, std::int16_t* coefficients)
{
    for (std::size_t block = 0; block < blocksTogether; ++block) {
        std::int32_t values[64];
        for (std::ptrdiff_t i = 0; i < 64; ++i) {
            values[i] = blocks[block][i / 8 * stride + i % 8];
        }
        for (std::ptrdiff_t line = 0; line < 8; ++line) {
            transformLanes<true, 1>(values + 8 * line);
        }
        for (std::ptrdiff_t column = 0; column < 8; ++column) {
            transformLanes<false, 8>(values + column);
        }
        for (std::size_t i = 0; i < 64; ++i) {
            coefficients[blocksOfSlice * i + block] = static_cast<std::int16_t>(values[i]);
        }
    }
}

void transformVectors(const std::uint16_t* const* blocks, std::ptrdiff_t stride, std::int16_t* coefficients)
{
    transformBlocks(blocks, stride, coefficients);
}

} // namespace

Transform plainTransform()
{
    return transformPlain;
}

Transform vectorTransform()
{
    return transformVectors;
}

Transform bestTransform()
{
    const Transform wide = wideTransform();
    return wide != nullptr ? wide : transformVectors;
}

} // namespace tavrix::prores
