#include "aic/slice.h"

#include <algorithm>
#include <limits>

namespace tavrix::aic
{

namespace
{

constexpr std::uint32_t codeFieldBits = 4;

// Room for any band of a macroblock: one more than its coefficients, as the last store may be a discarded one.
constexpr std::size_t longestBand = 193;

CodeWord wordOf(const CodeTable& table, std::uint32_t code, std::uint32_t value)
{
    return value < tabledValues ? table[value] : codeWord(codeOf(code), value);
}

std::uint64_t weigh(const std::int16_t* counts, const std::int16_t* lengths, std::uint32_t bins)
{
    std::int32_t sum = 0;
    for (std::uint32_t i = 0; i < bins; ++i) {
        sum += static_cast<std::int32_t>(counts[i]) * static_cast<std::int32_t>(lengths[i]);
    }
    return static_cast<std::uint64_t>(sum);
}

} // namespace

void SliceCoder::Statistics::clear()
{
    counts.fill(0);
    large.clear();
    largest = 0;
}

inline void SliceCoder::Statistics::add(std::uint32_t value)
{
    if (value < tabledValues) {
        ++counts[value];
    } else {
        large.push_back(static_cast<std::uint16_t>(value));
    }
    largest = std::max(largest, value);
}

SliceCoder::SliceCoder(int sliceWidth) : sliceWidth_(sliceWidth)
{
    const auto width = static_cast<std::size_t>(sliceWidth);
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        bands_[band].tokens.resize(width * static_cast<std::size_t>(bands[band].count));
        bands_[band].tokensOfMacroblock.resize(width);
    }
}

void SliceCoder::begin(int macroblocks)
{
    macroblocks_ = macroblocks;
    added_ = 0;
    for (BandState& state : bands_) {
        state.tokenCount = 0;
        state.levels.clear();
        state.runs.clear();
    }
}

void SliceCoder::addMacroblock(const std::int32_t* levels, const CodingOrder& order)
{
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        addBand(band, levels, order.data() + bands[band].offset);
    }
    ++added_;
}

void SliceCoder::addBand(std::size_t band, const std::int32_t* levels, const std::uint16_t* order)
{
    BandState& state = bands_[band];
    const int count = bands[band].count;
    std::array<std::int32_t, longestBand> values;
    std::array<std::uint8_t, longestBand> places;
    std::size_t found = 0;
    for (int i = 0; i < count; ++i) {
        const std::int32_t value = levels[order[i]];
        values[found] = value;
        places[found] = static_cast<std::uint8_t>(i);
        found += value != 0 ? 1U : 0U;
    }
    Token* token = state.tokens.data() + state.tokenCount;
    int next = 0;
    for (std::size_t i = 0; i < found; ++i) {
        const std::int32_t value = values[i];
        const std::int32_t sign = value >> 31;
        const auto run = static_cast<std::uint32_t>(places[i] - next);
        const auto level = static_cast<std::uint32_t>(2 * ((value ^ sign) - sign) - 1 + sign);
        next = places[i] + 1;
        state.runs.add(run);
        state.levels.add(level);
        *token++ = {static_cast<std::uint16_t>(run), static_cast<std::uint16_t>(level)};
    }
    if (next < count) {
        state.runs.add(static_cast<std::uint32_t>(count - next));
    }
    state.tokenCount += found;
    state.tokensOfMacroblock[added_] = static_cast<std::uint8_t>(found);
}

SliceCoder::Choice SliceCoder::cheapest(const Statistics& statistics, std::uint32_t offset, std::uint64_t zeros)
{
    const std::uint32_t bins = (std::min(statistics.largest, tabledValues - 1) + 16) / 16 * 16;
    Choice best{0, std::numeric_limits<std::uint64_t>::max()};
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        const Code code = codeOf(index);
        if (!codeHolds(code, statistics.largest + offset)) {
            continue;
        }
        const LengthTable& lengths = lengthTable(index);
        std::uint64_t bits = weigh(statistics.counts.data(), lengths.data() + offset, bins) +
                             zeros * static_cast<std::uint64_t>(lengths[0]);
        for (const std::uint16_t value : statistics.large) {
            bits += codeLength(code, value + offset);
        }
        if (bits < best.bits) {
            best = {index, bits};
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
        skippingBits = 1 + 2 * codeFieldBits + level.bits + run.bits;
    }
    const bool dense = 3 * state.tokenCount > coefficients;
    if (!forced && !dense) {
        return skippingBits;
    }
    const Choice spelled = cheapest(state.levels, 1, coefficients - state.tokenCount);
    const std::uint64_t spelledBits = 1 + codeFieldBits + spelled.bits;
    if (skippingBits <= spelledBits) {
        return skippingBits;
    }
    state.skips = false;
    state.levelCode = spelled.code;
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

void SliceCoder::writeSkipping(BitWriter& writer, std::size_t band) const
{
    const BandState& state = bands_[band];
    const int count = bands[band].count;
    const CodeTable& levelTable = codeTable(state.levelCode);
    const CodeTable& runTable = codeTable(state.runCode);
    const Token* token = state.tokens.data();
    for (int macroblock = 0; macroblock < macroblocks_; ++macroblock) {
        int next = 0;
        for (int left = state.tokensOfMacroblock[static_cast<std::size_t>(macroblock)]; left > 0; --left, ++token) {
            writer.put(runTable[token->run], wordOf(levelTable, state.levelCode, token->level));
            next += token->run + 1;
        }
        if (next < count) {
            writer.put(runTable[static_cast<std::size_t>(count - next)]);
        }
    }
}

void SliceCoder::writeSpelled(BitWriter& writer, std::size_t band) const
{
    const BandState& state = bands_[band];
    const int count = bands[band].count;
    const CodeTable& table = codeTable(state.levelCode);
    const Token* token = state.tokens.data();
    const Code code = codeOf(state.levelCode);
    const std::uint32_t longestRow = longestZeroRow(code);
    std::array<CodeWord, 33> rows;
    for (std::uint32_t zeros = 0; zeros <= longestRow; ++zeros) {
        rows[zeros] = zeroRow(code, zeros);
    }
    // Answers the last part of a row of zeros, to be written together with what follows.
    const auto putZeros = [&](std::uint32_t zeros) {
        for (; zeros > longestRow; zeros -= longestRow) {
            writer.put(rows[longestRow]);
        }
        return rows[zeros];
    };
    for (int macroblock = 0; macroblock < macroblocks_; ++macroblock) {
        int next = 0;
        for (int left = state.tokensOfMacroblock[static_cast<std::size_t>(macroblock)]; left > 0; --left, ++token) {
            const CodeWord zeros = putZeros(token->run);
            writer.put(zeros, wordOf(table, state.levelCode, token->level + 1U));
            next += token->run + 1;
        }
        if (next < count) {
            writer.put(putZeros(static_cast<std::uint32_t>(count - next)));
        }
    }
}

void SliceCoder::write(std::uint8_t* at) const
{
    BitWriter writer(at);
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        const BandState& state = bands_[band];
        writer.put({state.skips ? 1U : 0U, 1}, {state.levelCode, codeFieldBits});
        if (state.skips) {
            writer.put({state.runCode, codeFieldBits});
            writeSkipping(writer, band);
        } else {
            writeSpelled(writer, band);
        }
    }
    writer.finish();
}

} // namespace tavrix::aic
