// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/transform.h"

#include "aic/tables.h"
#include "aic/transformlanes.h"
#include "aic/widetransform.h"

#include <bit>
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

// Puts levels that stand column by column where they are coded.
void placeLevels(const std::int32_t* levels, const std::uint16_t* places, bool turned, CodeValue* values)
{
    constexpr std::array<std::size_t, 4> firstOfQuarter{0, 32, 4, 36};
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        CodeValue* to = values + places[quarter];
        for (std::size_t i = 0; i < tileWalk.size(); ++i) {
            const std::size_t place = tileWalk[turned ? tileWalk.size() - 1 - i : i];
            to[i] = codeValue(levels[firstOfQuarter[quarter] + place % 4 * 8 + place / 4]);
        }
    }
}

void transformPlain(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors,
                    const std::uint16_t* places, bool turned, CodeValue* values)
{
    float rows[64];
    float columns[64];
    std::int32_t levels[64];
    for (std::ptrdiff_t i = 0; i < 64; ++i) {
        const std::ptrdiff_t place = i / 8 * stride + i % 8;
        rows[i] = static_cast<float>(samples[place]);
    }
    for (int i = 0; i < 8; ++i) {
        transformLanes<8>(rows + i);
    }
    for (int i = 0; i < 64; ++i) {
        columns[i] = rows[i % 8 * 8 + i / 8];
    }
    for (int i = 0; i < 8; ++i) {
        transformLanes<8>(columns + i);
    }
    columns[0] -= midGrey;
    for (int i = 0; i < 64; ++i) {
        const float rounded = columns[i] * factors[i] + roundingBias;
        levels[i] = std::bit_cast<std::int32_t>(rounded) - std::bit_cast<std::int32_t>(roundingBias);
    }
    placeLevels(levels, places, turned, values);
}

void transformVectors(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors,
                      const std::uint16_t* places, bool turned, CodeValue* values)
{
    Lanes rows[16];
    Lanes columns[16];
    std::int32_t levels[64];
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
    for (std::size_t i = 0; i < 16; ++i) {
        Lanes factor;
        std::memcpy(&factor, factors + 4 * i, sizeof factor);
        const Lanes rounded = columns[i] * factor + roundingBias;
        const LaneBits integers = reinterpret_cast<LaneBits>(rounded) - std::bit_cast<std::int32_t>(roundingBias);
        std::memcpy(levels + 4 * i, &integers, sizeof integers);
    }
    placeLevels(levels, places, turned, values);
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

} // namespace tavrix::aic
