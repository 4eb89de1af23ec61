// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Entropy coding of one slice.

#include "aic/bits.h"
#include "aic/tables.h"
#include "aic/transform.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavrix::aic
{

// Macroblocks are collected as runs and levels; then the cheapest codes of each band are chosen, which also tells the
// exact size; then the slice is written. One object serves any number of slices in turn.
class SliceCoder
{
public:
    // `sliceWidth` is the width of a full slice of the picture: it bounds what later slices may hold.
    explicit SliceCoder(int sliceWidth);

    void begin(int macroblocks);
    // The code values of a macroblock in coding order.
    void addMacroblock(const CodeValue* values);
    // Chooses the codes and answers the size of the slice in bytes, a multiple of 4.
    std::size_t choose();
    // Writes the slice with the chosen codes into zeroed memory of that size plus BitWriter::overrun.
    void write(std::uint8_t* at) const;

private:
    // One for each level, and one for the zeros that end a band of a macroblock.
    struct Token {
        std::uint16_t run;   // zeros before the level
        std::uint16_t value; // code value of the level, 0 for none
    };
    // How often each small value occurs, and the large values one by one.
    struct Statistics {
        static constexpr std::uint32_t smallValues = 32;
        using Counts = std::array<std::uint16_t, smallValues>;
        // Two of them, to be used in turns: one count could not be added to again before it is stored.
        std::array<Counts, 2> counts;
        std::vector<std::uint16_t> large; // room for all that may come
        std::size_t largeCount;

        void clear();
        void add(std::uint32_t value);
        [[nodiscard]] std::uint32_t largest() const; // 0 when there is none
        [[nodiscard]] std::size_t atLeast(std::uint32_t value) const;
    };
    // Bits that the values take beyond the shortest word, by k: in the unary codes and in the others.
    struct Excess {
        std::array<std::uint64_t, 8> unary;
        std::array<std::uint64_t, 8> golomb;
    };
    struct Choice {
        std::uint32_t code;
        std::uint64_t bits;
        std::uint32_t longest; // word
    };
    struct BandState {
        std::vector<Token> tokens;
        std::size_t tokenCount;
        std::size_t levelCount;
        Statistics levels; // code values less one
        Statistics runs;
        bool skips;
        std::uint32_t levelCode;
        std::uint32_t runCode;
        std::uint32_t longestPair; // bits of a run and its level
    };

    // `Small`: all levels are.
    template <bool Small> static void addBand(BandState& state, const CodeValue* values, int count);
    std::uint64_t chooseBand(std::size_t band);
    [[nodiscard]] bool mustSpellZeros(std::size_t band) const;
    static std::size_t addSmall(Excess& excess, const Statistics& statistics, std::uint32_t offset);
    static void addLarge(Excess& excess, const Statistics& statistics, std::uint32_t offset);
    static Choice cheapest(const Statistics& statistics, std::uint32_t offset, std::size_t zeros);
    // `Tabled`: all levels are in the tables. `Fits`: so is a run with its level in a pair of words.
    template <bool Tabled, bool Fits> static void writeSkipping(BitWriter& writer, const BandState& state);
    template <bool Tabled, bool Fits> static void writeSpelled(BitWriter& writer, const BandState& state);

    int sliceWidth_;
    int macroblocks_ = 0;
    std::array<BandState, bandCount> bands_;
};

} // namespace tavrix::aic
