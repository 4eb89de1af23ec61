#include "aic/widetransform.h"

#include "aic/transformlanes.h"

#ifdef __AVX2__

// This file alone is compiled for such processors: nothing inline of the standard library is used in it, as the linker
// might take its form for the whole program.
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

void transform(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors, std::int32_t* levels)
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
        const __m256 rounded = block[u] * _mm256_loadu_ps(factors + 8 * u) + bias;
        const __m256i integers = _mm256_sub_epi32(_mm256_castps_si256(rounded), _mm256_castps_si256(bias));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(levels + 8 * u), integers);
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
