// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/slice.h"

#include "prores/codes.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tavrix::prores
{

namespace
{

// The order in which the coefficients of progressive pictures are coded, as 8 * v + u.
constexpr std::array<std::uint8_t, 64> scan{0,  1,  8,  9,  2,  3,  10, 11, 16, 17, 24, 25, 18, 19, 26, 27,
                                            4,  5,  12, 20, 13, 6,  7,  14, 21, 28, 29, 22, 15, 23, 30, 31,
                                            32, 33, 40, 48, 41, 34, 35, 42, 49, 56, 57, 50, 43, 36, 37, 44,
                                            51, 58, 59, 52, 45, 38, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

// What mid-grey samples make of the first coefficient.
constexpr int midGrey = 16384;

// One coefficient of all blocks, quantised.
struct Row {
    alignas(16) std::array<std::uint16_t, blocksOfSlice> levels; // without their signs
    std::uint32_t nonZeros;                                      // a bit for each block
};

void quantise(const std::int16_t* coefficients, std::uint16_t factor, std::uint16_t shift, Row& row)
{
#ifdef __SSE2__
    const __m128i factors = _mm_set1_epi16(static_cast<short>(factor));
    const __m128i count = _mm_cvtsi32_si128(shift);
    const __m128i zero = _mm_setzero_si128();
    row.nonZeros = 0;
    for (std::size_t i = 0; i < blocksOfSlice; i += 16) {
        __m128i zeros[2];
        for (std::size_t half = 0; half < 2; ++half) {
            const std::size_t at = i + 8 * half;
            const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(coefficients + at));
            const __m128i signs = _mm_srai_epi16(values, 15);
            const __m128i sizes = _mm_sub_epi16(_mm_xor_si128(values, signs), signs);
            const __m128i levels = _mm_srl_epi16(_mm_mulhi_epu16(sizes, factors), count);
            _mm_store_si128(reinterpret_cast<__m128i*>(row.levels.data() + at), levels);
            zeros[half] = _mm_cmpeq_epi16(levels, zero);
        }
        const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(zeros[0], zeros[1])));
        row.nonZeros |= (mask ^ 0xFFFFU) << i;
    }
#else
    row.nonZeros = 0;
    for (std::size_t i = 0; i < blocksOfSlice; ++i) {
        const auto size = static_cast<std::uint32_t>(std::abs(coefficients[i]));
        row.levels[i] = static_cast<std::uint16_t>(size * factor >> 16 >> shift);
        row.nonZeros |= (row.levels[i] != 0 ? 1U : 0U) << i;
    }
#endif
}

void writeFirstCoefficients(aic::BitWriter& writer, const PlaneCoefficients& coefficients, std::size_t blocks, int step)
{
    int last = (coefficients[0] - midGrey) / step;
    writer.put(codeWord(firstCode, static_cast<std::uint32_t>(last < 0 ? -2 * last - 1 : 2 * last)));
    std::size_t before = differenceCodes.size() - 2; // the code of the first difference
    bool wasNegative = false;
    for (std::size_t i = 1; i < blocks; ++i) {
        const int level = (coefficients[i] - midGrey) / step;
        const int difference = level - last;
        // Differences often change their sign, so that is what the lowest bit says.
        const bool changes = (difference < 0) != wasNegative;
        const int size = std::abs(difference);
        const auto value = static_cast<std::uint32_t>(size == 0 ? 0 : 2 * size - (changes ? 1 : 0));
        writer.put(codeWord(differenceCodes[before], value));
        before = std::min<std::size_t>(value, differenceCodes.size() - 1);
        wasNegative = difference < 0;
        last = level;
    }
}

} // namespace

Steps::Steps(std::span<const std::uint8_t, 64> matrix, int quantiser)
    : reciprocals_{}, firstStep_(matrix[0] * quantiser)
{
    constexpr int numberBits = 15;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        const auto step = static_cast<std::uint32_t>(matrix[i] * quantiser);
        const int width = std::bit_width(step - 1);
        const std::uint32_t factor = ((1U << (numberBits + width)) + step - 1) / step;
        reciprocals_[i] = {static_cast<std::uint16_t>(factor), static_cast<std::uint16_t>(numberBits + width - 16)};
    }
}

std::uint8_t* PlaneCoder::write(const PlaneCoefficients& coefficients, std::size_t blocks, const Steps& steps,
                                std::uint8_t* at)
{
    aic::BitWriter writer(at);
    writeFirstCoefficients(writer, coefficients, blocks, steps.firstStep());
    std::size_t runBefore = runBeforeFirst;
    std::size_t levelBefore = levelBeforeFirst;
    const std::uint32_t present = blocks < blocksOfSlice ? (1U << blocks) - 1 : ~0U;
    std::size_t next = 0; // the first place after the level before
    Row row;
    for (std::size_t i = 1; i < scan.size(); ++i) {
        const std::int16_t* values = coefficients.data() + blocksOfSlice * scan[i];
        const Steps::Reciprocal& reciprocal = steps.reciprocals_[scan[i]];
        quantise(values, reciprocal.factor, reciprocal.shift, row);
        const std::size_t first = blocks * (i - 1);
        for (std::uint32_t mask = row.nonZeros & present; mask != 0; mask &= mask - 1) {
            const auto block = static_cast<std::size_t>(std::countr_zero(mask));
            const auto run = static_cast<std::uint32_t>(first + block - next);
            next = first + block + 1;
            const std::uint32_t level = row.levels[block] - 1U;
            const std::uint32_t sign = static_cast<std::uint16_t>(values[block]) >> 15;
            const CodeWord runWord =
                run < tabledValues ? runTables[runBefore][run] : codeWord(runCodes[runBefore], run);
            const CodeWord levelWord = level < tabledValues ? levelTables[levelBefore][std::size_t{2} * level + sign]
                                                            : signedWord(levelCodes[levelBefore], level, sign);
            writer.putLong(joined(runWord, levelWord));
            runBefore = std::min<std::size_t>(run, runCodes.size() - 1);
            levelBefore = std::min<std::size_t>(level + 1, levelCodes.size() - 1);
        }
    }
    return writer.finish();
}

} // namespace tavrix::prores
