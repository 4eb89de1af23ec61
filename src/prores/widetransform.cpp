// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/widetransform.h"

// This file alone is compiled for such processors: nothing inline of the standard library is used in it, as the linker
// might take its form for the whole program. What it shares with other files is always inlined.
#ifdef __AVX2__

#include "prores/vectorblocks.h"

namespace tavrix::prores
{

namespace
{

void transform(const std::uint16_t* const* blocks, std::ptrdiff_t stride, std::int16_t* coefficients)
{
    transformBlocks(blocks, stride, coefficients);
}

} // namespace

Transform wideTransform()
{
    return __builtin_cpu_supports("avx2") != 0 ? transform : nullptr;
}

} // namespace tavrix::prores

#else

namespace tavrix::prores
{

Transform wideTransform()
{
    return nullptr;
}

} // namespace tavrix::prores

#endif
