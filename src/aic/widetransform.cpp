// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/widetransform.h"

#include "aic/tables.h"
#include "aic/transformlanes.h"

#ifdef __AVX2__

// This file alone is compiled for such processors: nothing inline of the standard library is used in it when it runs,
// as the linker might take its form for the whole program.
#include <immintrin.h>

namespace tavrix::aic
{

namespace
{

[[gnu::always_inline]] inline void transpose(__m256* v)
{
    __m256 pairs[8];
    for (int i = 0; i < 8; i += 2) {
        pairs[i] = _mm256_unpacklo_ps(v[i], v[i + 1]);
        pairs[i + 1] = _mm256_unpackhi_ps(v[i], v[i + 1]);
    }
    __m256 fours[8];
    for (int i = 0; i < 8; i += 4) {
        fours[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
        fours[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xEE);
        fours[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
        fours[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xEE);
    }
    for (int i = 0; i < 4; ++i) {
        v[i] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x20);
        v[i + 4] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x31);
    }
}

// Bytes of a tile whose columns stand one after the other, in the order of the walk: what comes from its first two
// columns and what comes from the others. 128 and more gives zero.
struct Walk {
    alignas(32) std::uint8_t first[32];
    alignas(32) std::uint8_t second[32];
};

constexpr Walk makeWalk(bool turned)
{
    Walk walk{};
    for (int i = 0; i < coefficientsPerTile; ++i) {
        const int place = tileWalk[static_cast<std::size_t>(turned ? coefficientsPerTile - 1 - i : i)];
        const int word = place % 4 * 4 + place / 4;
        for (int byte = 0; byte < 2; ++byte) {
            const auto at = static_cast<std::uint8_t>(2 * (word & 7) + byte);
            walk.first[2 * i + byte] = word < 8 ? at : std::uint8_t{128};
            walk.second[2 * i + byte] = word < 8 ? std::uint8_t{128} : at;
        }
    }
    return walk;
}

constexpr Walk forwards = makeWalk(false);
constexpr Walk backwards = makeWalk(true);

// Two columns of levels, as integers above the bias, become code values: the upper halves of both, then the lower ones.
[[gnu::always_inline]] inline __m256i foldColumns(__m256 left, __m256 right, __m256 bias)
{
    const __m256i zero = _mm256_castps_si256(bias);
    const __m256i levels = _mm256_packs_epi32(_mm256_sub_epi32(_mm256_castps_si256(left), zero),
                                              _mm256_sub_epi32(_mm256_castps_si256(right), zero));
    return _mm256_xor_si256(_mm256_add_epi16(levels, levels), _mm256_srai_epi16(levels, 15));
}

void transform(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors, const std::uint16_t* places,
               bool turned, std::uint16_t* values)
{
    __m256 block[8];
    for (int row = 0; row < 8; ++row, samples += stride) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
        block[row] = _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
    }
    transformLanes<1>(block);
    transpose(block);
    transformLanes<1>(block);
    block[0] -= _mm256_setr_ps(midGrey, 0, 0, 0, 0, 0, 0, 0);
    const __m256 bias = _mm256_set1_ps(roundingBias);
    for (int u = 0; u < 8; ++u) {
        block[u] = block[u] * _mm256_loadu_ps(factors + 8 * u) + bias;
    }
    const Walk& walk = turned ? backwards : forwards;
    const __m256i fromFirst = _mm256_load_si256(reinterpret_cast<const __m256i*>(walk.first));
    const __m256i fromSecond = _mm256_load_si256(reinterpret_cast<const __m256i*>(walk.second));
    for (int half = 0; half < 2; ++half) {
        const __m256i first = foldColumns(block[4 * half], block[4 * half + 1], bias);
        const __m256i second = foldColumns(block[4 * half + 2], block[4 * half + 3], bias);
        const __m256i upper =
            _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permute2x128_si256(first, first, 0x00), fromFirst),
                            _mm256_shuffle_epi8(_mm256_permute2x128_si256(second, second, 0x00), fromSecond));
        const __m256i lower =
            _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permute2x128_si256(first, first, 0x11), fromFirst),
                            _mm256_shuffle_epi8(_mm256_permute2x128_si256(second, second, 0x11), fromSecond));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + places[half]), upper);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + places[2 + half]), lower);
    }
}

} // namespace

WideTransform wideTransform()
{
    return __builtin_cpu_supports("avx2") != 0 ? transform : nullptr;
}

} // namespace tavrix::aic

#else

namespace tavrix::aic
{

WideTransform wideTransform()
{
    return nullptr;
}

} // namespace tavrix::aic

#endif
