// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The transform's arithmetic, written once for any number of columns side by side: a float, or a vector of them. All
// forms do the same operations in the same order, so that their results are equal to the last bit.

#include <cstddef>

namespace tavrix::aic
{

// One-dimensional scaled DCT after Arai, Agui and Nakajima over the eight values at stride `Step`, in place.
template <std::ptrdiff_t Step, typename Lanes> [[gnu::always_inline]] inline void transformLanes(Lanes* v)
{
    const Lanes s07 = v[0] + v[7 * Step];
    const Lanes d07 = v[0] - v[7 * Step];
    const Lanes s16 = v[Step] + v[6 * Step];
    const Lanes d16 = v[Step] - v[6 * Step];
    const Lanes s25 = v[2 * Step] + v[5 * Step];
    const Lanes d25 = v[2 * Step] - v[5 * Step];
    const Lanes s34 = v[3 * Step] + v[4 * Step];
    const Lanes d34 = v[3 * Step] - v[4 * Step];

    const Lanes e0 = s07 + s34;
    const Lanes e3 = s07 - s34;
    const Lanes e1 = s16 + s25;
    const Lanes e2 = s16 - s25;
    const Lanes z1 = (e2 + e3) * 0.707106781F;
    v[0] = e0 + e1;
    v[4 * Step] = e0 - e1;
    v[2 * Step] = e3 + z1;
    v[6 * Step] = e3 - z1;

    const Lanes o0 = d34 + d25;
    const Lanes o1 = d25 + d16;
    const Lanes o2 = d16 + d07;
    const Lanes z5 = (o0 - o2) * 0.382683433F;
    const Lanes z2 = o0 * 0.541196100F + z5;
    const Lanes z4 = o2 * 1.306562965F + z5;
    const Lanes z3 = o1 * 0.707106781F;
    const Lanes z11 = d07 + z3;
    const Lanes z13 = d07 - z3;
    v[5 * Step] = z13 + z2;
    v[3 * Step] = z13 - z2;
    v[Step] = z11 + z4;
    v[7 * Step] = z11 - z4;
}

// Adding and taking away 1.5 * 2^23 leaves a float rounded to the nearest integer in its low bits.
inline constexpr float roundingBias = 12582912.0F;
// What mid-grey samples add to the first coefficient.
inline constexpr float midGrey = 128.0F * 64.0F;

} // namespace tavrix::aic
