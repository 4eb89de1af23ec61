#include "tools/movencoder/aicdct.h"

#include "tools/movencoder/aictables.h"

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tavrix::aic
{

namespace
{

using Lanes = float __attribute__((vector_size(16)));
using LaneBits = std::int32_t __attribute__((vector_size(16)));

constexpr Lanes all(float value)
{
    return Lanes{value, value, value, value};
}

// One-dimensional scaled DCT after Arai, Agui and Nakajima over the eight vectors at stride `Step`, in place.
template <std::ptrdiff_t Step> [[gnu::always_inline]] inline void transformLanes(Lanes* v)
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
    const Lanes z1 = (e2 + e3) * all(0.707106781F);
    v[0] = e0 + e1;
    v[4 * Step] = e0 - e1;
    v[2 * Step] = e3 + z1;
    v[6 * Step] = e3 - z1;

    const Lanes o0 = d34 + d25;
    const Lanes o1 = d25 + d16;
    const Lanes o2 = d16 + d07;
    const Lanes z5 = (o0 - o2) * all(0.382683433F);
    const Lanes z2 = o0 * all(0.541196100F) + z5;
    const Lanes z4 = o2 * all(1.306562965F) + z5;
    const Lanes z3 = o1 * all(0.707106781F);
    const Lanes z11 = d07 + z3;
    const Lanes z13 = d07 - z3;
    v[5 * Step] = z13 + z2;
    v[3 * Step] = z13 - z2;
    v[Step] = z11 + z4;
    v[7 * Step] = z11 - z4;
}

// Transposes the four vectors from[0], from[2], from[4], from[6] (a quarter of the block) into to[0], to[2], ...
[[gnu::always_inline]] inline void transposeQuarter(const Lanes* from, Lanes* to)
{
    const Lanes low01 = __builtin_shufflevector(from[0], from[2], 0, 4, 1, 5);
    const Lanes high01 = __builtin_shufflevector(from[0], from[2], 2, 6, 3, 7);
    const Lanes low23 = __builtin_shufflevector(from[4], from[6], 0, 4, 1, 5);
    const Lanes high23 = __builtin_shufflevector(from[4], from[6], 2, 6, 3, 7);
    to[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    to[2] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    to[4] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    to[6] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

void loadSamples(const std::uint8_t* samples, std::ptrdiff_t stride, Lanes* block)
{
    for (std::ptrdiff_t row = 0; row < 8; ++row, samples += stride) {
#ifdef __SSE2__
        const __m128i zero = _mm_setzero_si128();
        const __m128i words = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples)), zero);
        block[2 * row] = _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero));
        block[2 * row + 1] = _mm_cvtepi32_ps(_mm_unpackhi_epi16(words, zero));
#else
        for (int i = 0; i < 8; ++i) {
            block[2 * row + i / 4][i % 4] = static_cast<float>(samples[i]);
        }
#endif
    }
}

} // namespace

LevelFactors levelFactors(int quantiser)
{
    constexpr std::array<float, 8> scale{1.0F, 1.387039845F, 1.306562965F, 1.175875602F,
                                         1.0F, 0.785694958F, 0.541196100F, 0.275899379F};
    LevelFactors factors{};
    for (std::size_t v = 0; v < 8; ++v) {
        for (std::size_t u = 0; u < 8; ++u) {
            const auto step = static_cast<float>(quantiser * quantisationMatrix[8 * v + u]);
            factors[8 * u + v] = 2.0F / (step * scale[u] * scale[v]);
        }
    }
    return factors;
}

void transformBlock(const std::uint8_t* samples, std::ptrdiff_t stride, const LevelFactors& factors,
                    std::int32_t* levels)
{
    // Adding and taking away 1.5 * 2^23 leaves a float rounded to the nearest integer in its low bits.
    constexpr float roundingBias = 12582912.0F;
    constexpr float midGrey = 128.0F * 64.0F;
    Lanes rows[16];
    Lanes columns[16];
    loadSamples(samples, stride, rows);
    transformLanes<2>(rows);
    transformLanes<2>(rows + 1);
    transposeQuarter(rows, columns);
    transposeQuarter(rows + 8, columns + 1);
    transposeQuarter(rows + 1, columns + 8);
    transposeQuarter(rows + 9, columns + 9);
    transformLanes<2>(columns);
    transformLanes<2>(columns + 1);
    columns[0] -= Lanes{midGrey, 0.0F, 0.0F, 0.0F};

    const LaneBits biasBits = reinterpret_cast<LaneBits>(all(roundingBias));
    for (std::size_t i = 0; i < 16; ++i) {
        Lanes factor;
        std::memcpy(&factor, factors.data() + 4 * i, sizeof factor);
        const Lanes rounded = columns[i] * factor + all(roundingBias);
        const LaneBits integers = reinterpret_cast<LaneBits>(rounded) - biasBits;
        std::memcpy(levels + 4 * i, &integers, sizeof integers);
    }
}

} // namespace tavrix::aic
