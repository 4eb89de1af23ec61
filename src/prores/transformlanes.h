// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The integer transform's arithmetic, written once for any number of blocks side by side: an integer, or a vector of
// them. All forms do the same operations, so that their results are equal.

#include <cstddef>

namespace tavrix::prores
{

// Constants of the transform after Loeffler, Ligtenberg and Moschytz, times 2^13.
inline constexpr int constantBits = 13;
// What the rows keep of a fraction, and what is left of the scale of both passes in the end.
inline constexpr int rowBits = 1;
inline constexpr int outputBits = rowBits + 1;

template <int Bits, typename Lanes> [[gnu::always_inline]] inline void roundDown(Lanes& value)
{
    value = (value + (1 << (Bits - 1))) >> Bits;
}

// The even outputs 2 and 6 and the odd ones, scaled down by `Shift` bits; `d` holds the differences 7 to 4 on 0 to 3.
template <int Shift, typename Lanes> [[gnu::always_inline]] inline void rotate(Lanes& v2, Lanes& v6, Lanes* d)
{
    const Lanes turned = (v2 + v6) * 4433;
    v2 = turned + v2 * 6270;
    v6 = turned - v6 * 15137;
    roundDown<Shift>(v2);
    roundDown<Shift>(v6);

    const Lanes all = (d[3] + d[1] + d[2] + d[0]) * 9633;
    const Lanes outer = (d[3] + d[0]) * -7373;
    const Lanes inner = (d[2] + d[1]) * -20995;
    const Lanes even = all + (d[3] + d[1]) * -16069;
    const Lanes odd = all + (d[2] + d[0]) * -3196;
    d[0] = d[0] * 12299 + outer + odd;
    d[1] = d[1] * 25172 + inner + even;
    d[2] = d[2] * 16819 + inner + odd;
    d[3] = d[3] * 2446 + outer + even;
    roundDown<Shift>(d[0]);
    roundDown<Shift>(d[1]);
    roundDown<Shift>(d[2]);
    roundDown<Shift>(d[3]);
}

// Eight values at stride `Step`, in place.
template <bool Rows, std::ptrdiff_t Step, typename Lanes> [[gnu::always_inline]] inline void transformLanes(Lanes* v)
{
    const Lanes s0 = v[0] + v[7 * Step];
    const Lanes s1 = v[Step] + v[6 * Step];
    const Lanes s2 = v[2 * Step] + v[5 * Step];
    const Lanes s3 = v[3 * Step] + v[4 * Step];
    Lanes d[4] = {v[0] - v[7 * Step], v[Step] - v[6 * Step], v[2 * Step] - v[5 * Step], v[3 * Step] - v[4 * Step]};
    const Lanes outer = s0 + s3;
    const Lanes inner = s1 + s2;
    Lanes v0 = outer + inner;
    Lanes v4 = outer - inner;
    Lanes v2 = s0 - s3;
    Lanes v6 = s1 - s2;
    if constexpr (Rows) {
        v0 = v0 << rowBits;
        v4 = v4 << rowBits;
        rotate<constantBits - rowBits>(v2, v6, d);
    } else {
        roundDown<outputBits>(v0);
        roundDown<outputBits>(v4);
        rotate<constantBits + outputBits>(v2, v6, d);
    }
    v[0] = v0;
    v[Step] = d[0];
    v[2 * Step] = v2;
    v[3 * Step] = d[1];
    v[4 * Step] = v4;
    v[5 * Step] = d[2];
    v[6 * Step] = v6;
    v[7 * Step] = d[3];
}

} // namespace tavrix::prores
