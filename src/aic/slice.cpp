// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/slice.h"

#include <algorithm>
#include <bit>
#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tavrix::aic
{

namespace
{

constexpr std::uint32_t codeFieldBits = 4;

// A bit for each of `count` values, 64 at most, that is not zero.
std::uint64_t nonZeros(const CodeValue* values, int count)
{
    std::uint64_t mask = 0;
    for (int i = 0; i < count; i += coefficientsPerTile) {
#ifdef __SSE2__
        const __m128i zero = _mm_setzero_si128();
        const auto* at = reinterpret_cast<const __m128i*>(values + i);
        const __m128i zeros =
            _mm_packs_epi16(_mm_cmpeq_epi16(_mm_loadu_si128(at), zero), _mm_cmpeq_epi16(_mm_loadu_si128(at + 1), zero));
        mask |= static_cast<std::uint64_t>(_mm_movemask_epi8(zeros) ^ 0xFFFF) << i;
#else
        for (int j = i; j < i + coefficientsPerTile; ++j) {
            mask |= static_cast<std::uint64_t>(values[j] != 0 ? 1U : 0U) << j;
        }
#endif
    }
    return mask;
}

// Larger than none of the values by more than their number of bits allows: what all bits together are.
std::uint32_t allBits(const CodeValue* values, int count)
{
    std::uint32_t bits = 0;
    for (int i = 0; i < count; ++i) {
        bits |= values[i];
    }
    return bits;
}

// The word of a level by its code value, or of the value that the code counts where there is no table for it.
CodeWord levelWord(const CodeTable& levels, std::uint32_t code, std::uint32_t value, std::uint32_t counted)
{
    return value < tabledValues ? levels[value] : codeWord(codeOf(code), counted);
}

} // namespace

void SliceCoder::Statistics::clear()
{
    counts[0].fill(0);
    counts[1].fill(0);
    largeCount = 0;
}

std::size_t SliceCoder::Statistics::atLeast(std::uint32_t value) const
{
    std::size_t count = 0;
    for (std::uint32_t i = value; i < smallValues; ++i) {
        count += counts[0][i];
        count += counts[1][i];
    }
    for (std::size_t i = 0; i < largeCount; ++i) {
        count += large[i] >= value ? 1U : 0U;
    }
    return count;
}

SliceCoder::SliceCoder(int sliceWidth) : sliceWidth_(sliceWidth)
{
    const auto width = static_cast<std::size_t>(sliceWidth);
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        const std::size_t coefficients = width * static_cast<std::size_t>(bands[band].count);
        bands_[band].tokens.resize(coefficients + width);
        bands_[band].levels.large.resize(coefficients);
        bands_[band].runs.large.resize(coefficients);
    }
}

void SliceCoder::begin(int macroblocks)
{
    macroblocks_ = macroblocks;
    for (BandState& state : bands_) {
        state.tokenCount = 0;
        state.levelCount = 0;
        state.levels.clear();
        state.runs.clear();
    }
}

void SliceCoder::addMacroblock(const CodeValue* values)
{
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        const CodeValue* own = values + bands[band].offset;
        const int count = bands[band].count;
        const bool small = allBits(own, count) < Statistics::smallValues;
        (small ? addBand<true> : addBand<false>)(bands_[band], own, count);
    }
}

inline void SliceCoder::Statistics::add(std::uint32_t value)
{
    if (value < smallValues) {
        ++counts[0][value];
    } else {
        large[largeCount++] = static_cast<std::uint16_t>(value);
    }
}

template <bool Small> void SliceCoder::addBand(BandState& state, const CodeValue* values, int count)
{
    constexpr int wordBits = 64;
    Token* token = state.tokens.data() + state.tokenCount;
    const Token* const first = token;
    const CodeValue* next = values;
    for (int start = 0; start < count; start += wordBits) {
        std::uint64_t mask = nonZeros(values + start, std::min(wordBits, count - start));
        const auto take = [&](std::size_t turn) {
            const CodeValue* place = values + start + std::countr_zero(mask);
            mask &= mask - 1;
            const std::uint32_t value = *place;
            const auto run = static_cast<std::uint32_t>(place - next);
            next = place + 1;
            token->run = static_cast<std::uint16_t>(run);
            token->value = static_cast<std::uint16_t>(value);
            ++token;
            state.runs.add(run);
            if constexpr (Small) {
                ++state.levels.counts[turn][value - 1];
            } else {
                state.levels.add(value - 1);
            }
        };
        while (mask != 0) {
            take(0);
            if (mask == 0) {
                break;
            }
            take(1);
        }
    }
    state.levelCount += static_cast<std::size_t>(token - first);
    const auto rest = static_cast<std::uint32_t>(values + count - next);
    if (rest > 0) {
        *token++ = {static_cast<std::uint16_t>(rest), 0};
        state.runs.add(rest);
    }
    state.tokenCount += static_cast<std::size_t>(token - first);
}

std::uint32_t SliceCoder::Statistics::largest() const
{
    if (largeCount > 0) {
        return *std::max_element(large.begin(), large.begin() + static_cast<std::ptrdiff_t>(largeCount));
    }
    std::uint32_t value = smallValues - 1;
    while (value > 0 && counts[0][value] == 0 && counts[1][value] == 0) {
        --value;
    }
    return value;
}

// A word's length grows by one (unary) or two (exp-Golomb) at thresholds of its value: how many values reach each
// threshold tells the bits of all. Answers how many there are.
std::size_t SliceCoder::addSmall(Excess& excess, const Statistics& statistics, std::uint32_t offset)
{
    constexpr std::uint32_t end = Statistics::smallValues + 1;
    std::array<std::uint32_t, end + 1> reaching{}; // an offset of 1 moves all up
    for (std::uint32_t i = Statistics::smallValues; i-- > 0;) {
        reaching[i + offset] = reaching[i + offset + 1] + statistics.counts[0][i] + statistics.counts[1][i];
    }
    for (std::uint32_t k = 0; k < 8 && 1U << k < end; ++k) {
        for (std::uint32_t value = 1U << k; value < end; value += 1U << k) {
            excess.unary[k] += reaching[value];
        }
        for (std::uint32_t prefix = 1; prefix << k < end; prefix = 2 * prefix + 1) {
            excess.golomb[k] += std::uint64_t{2} * reaching[prefix << k];
        }
    }
    return reaching[offset];
}

// Four at a time: the width of a number is the exponent of its float.
void SliceCoder::addLarge(Excess& excess, const Statistics& statistics, std::uint32_t offset)
{
    constexpr std::size_t lanes = 4;
    using Lanes = std::int32_t __attribute__((vector_size(4 * lanes)));
    using Floats = float __attribute__((vector_size(4 * lanes)));
    std::array<Lanes, 8> unary{};
    std::array<Lanes, 8> exponents{};
    for (std::size_t start = 0; start < statistics.largeCount; start += lanes) {
        Lanes values{}; // zero has no excess
        for (std::size_t i = 0; i < std::min(lanes, statistics.largeCount - start); ++i) {
            values[i] = static_cast<std::int32_t>(statistics.large[start + i] + offset);
        }
        for (int k = 0; k < 8; ++k) {
            const auto i = static_cast<std::size_t>(k);
            unary[i] += values >> k;
            exponents[i] += reinterpret_cast<Lanes>(__builtin_convertvector(values + (1 << k), Floats)) >> 23;
        }
    }
    const std::size_t all = (statistics.largeCount + lanes - 1) / lanes * lanes;
    for (std::size_t k = 0; k < 8; ++k) {
        const Lanes& steps = unary[k];
        const Lanes& widths = exponents[k];
        excess.unary[k] += static_cast<std::uint64_t>(steps[0] + steps[1] + steps[2] + steps[3]);
        excess.golomb[k] += 2U * static_cast<std::uint64_t>(widths[0] + widths[1] + widths[2] + widths[3]);
        excess.golomb[k] -= 2U * all * (127U + k);
    }
}

SliceCoder::Choice SliceCoder::cheapest(const Statistics& statistics, std::uint32_t offset, std::size_t zeros)
{
    Excess excess{};
    const std::uint64_t words = addSmall(excess, statistics, offset) + statistics.largeCount + zeros;
    if (statistics.largeCount > 0) {
        addLarge(excess, statistics, offset);
    }
    const std::uint32_t largest = statistics.largest() + offset;
    Choice best{0, std::numeric_limits<std::uint64_t>::max(), 0};
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        const Code code = codeOf(index);
        if (!codeHolds(code, largest)) {
            continue;
        }
        std::uint64_t bits = words * (1U + code.k) + (code.golomb ? excess.golomb : excess.unary)[code.k];
        if (!code.golomb && largest >> code.k == longestUnaryPrefix) {
            // The longest prefix is not ended by a one.
            bits -= statistics.atLeast((longestUnaryPrefix << code.k) - offset);
        }
        if (bits < best.bits) {
            best = {index, bits, codeLength(code, largest)};
        }
    }
    return best;
}

// Decoders clear only part of their coefficient memory for a slice that is narrower than the others, so what lies
// beyond must be coded zero by zero.
bool SliceCoder::mustSpellZeros(std::size_t band) const
{
    return macroblocks_ < sliceWidth_ && sliceWidth_ * bands[band].offset + macroblocks_ * bands[band].count >
                                             macroblocks_ * coefficientsPerMacroblock;
}

std::uint64_t SliceCoder::chooseBand(std::size_t band)
{
    BandState& state = bands_[band];
    const auto coefficients = static_cast<std::size_t>(macroblocks_) * static_cast<std::size_t>(bands[band].count);
    const bool forced = mustSpellZeros(band);
    std::uint64_t skippingBits = std::numeric_limits<std::uint64_t>::max();
    state.skips = !forced;
    if (!forced) {
        const Choice level = cheapest(state.levels, 0, 0);
        const Choice run = cheapest(state.runs, 0, 0);
        state.levelCode = level.code;
        state.runCode = run.code;
        state.longestPair = level.longest + run.longest;
        skippingBits = 1 + 2 * codeFieldBits + level.bits + run.bits;
    }
    const bool dense = 3 * state.levelCount > coefficients;
    if (!forced && !dense) {
        return skippingBits;
    }
    const Choice spelled = cheapest(state.levels, 1, coefficients - state.levelCount);
    const std::uint64_t spelledBits = 1 + codeFieldBits + spelled.bits;
    if (skippingBits <= spelledBits) {
        return skippingBits;
    }
    const Code code = codeOf(spelled.code);
    state.skips = false;
    state.levelCode = spelled.code;
    state.longestPair = spelled.longest + (code.k + 1U) * std::min(state.runs.largest(), longestZeroRow(code));
    return spelledBits;
}

std::size_t SliceCoder::choose()
{
    std::uint64_t bits = 0;
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        bits += chooseBand(band);
    }
    return static_cast<std::size_t>((bits + 31) / 32 * 4);
}

template <bool Tabled, bool Fits> void SliceCoder::writeSkipping(BitWriter& writer, const BandState& state)
{
    const CodeTable& levels = levelTable(state.levelCode, true);
    const CodeTable& runs = codeTable(state.runCode);
    const auto level = [&](const Token& token) {
        return Tabled ? levels[token.value] : levelWord(levels, state.levelCode, token.value, token.value - 1U);
    };
    const Token* token = state.tokens.data();
    const Token* const end = token + state.tokenCount;
    if constexpr (Fits) {
        for (; end - token > 1; token += 2) {
            writer.putLong(joined(runs[token[0].run], level(token[0])), joined(runs[token[1].run], level(token[1])));
        }
    }
    for (; token != end; ++token) {
        writer.put(runs[token->run], level(*token));
    }
}

template <bool Tabled, bool Fits> void SliceCoder::writeSpelled(BitWriter& writer, const BandState& state)
{
    const CodeTable& levels = levelTable(state.levelCode, false);
    const ZeroRows& rows = zeroRows(state.levelCode);
    const std::uint32_t longestRow = longestZeroRow(codeOf(state.levelCode));
    const auto level = [&](const Token& token) {
        return Tabled ? levels[token.value] : levelWord(levels, state.levelCode, token.value, token.value);
    };
    const Token* token = state.tokens.data();
    const Token* const end = token + state.tokenCount;
    while (token != end) {
        std::uint32_t zeros = token->run;
        for (; zeros > longestRow; zeros -= longestRow) {
            writer.put(rows[longestRow]);
        }
        if (Fits && end - token > 1 && token[1].run <= longestRow) {
            writer.putLong(joined(rows[zeros], level(token[0])), joined(rows[token[1].run], level(token[1])));
            token += 2;
        } else {
            writer.put(rows[zeros], level(*token));
            ++token;
        }
    }
}

void SliceCoder::write(std::uint8_t* at) const
{
    BitWriter writer(at);
    for (const BandState& state : bands_) {
        const bool fits = state.longestPair <= BitWriter::longestTogether;
        const bool tabled = state.levels.largest() + 1 < tabledValues;
        writer.put({state.skips ? 1U : 0U, 1}, {state.levelCode, codeFieldBits});
        if (state.skips) {
            writer.put({state.runCode, codeFieldBits});
            (!fits    ? writeSkipping<false, false>
             : tabled ? writeSkipping<true, true>
                      : writeSkipping<false, true>)(writer, state);
        } else {
            (!fits    ? writeSpelled<false, false>
             : tabled ? writeSpelled<true, true>
                      : writeSpelled<false, true>)(writer, state);
        }
    }
    writer.finish();
}

} // namespace tavrix::aic
