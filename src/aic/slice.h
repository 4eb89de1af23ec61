#pragma once

// Entropy coding of one slice.

#include "aic/bits.h"
#include "aic/tables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavrix::aic
{

// Macroblocks are collected as runs and levels; then the cheapest codes of each band are
// chosen, which also tells the exact size; then the slice is written. One object serves any number of slices in turn.
class SliceCoder
{
public:
    // `sliceWidth` is the width of a full slice of the picture: it bounds what later slices may hold.
    explicit SliceCoder(int sliceWidth);

    void begin(int macroblocks);
    // Levels of the six blocks, column by column inside each block; `order` names their places in coding order.
    void addMacroblock(const std::int32_t* levels, const CodingOrder& order);
    // Chooses the codes and answers the size of the slice in bytes, a multiple of 4.
    std::size_t choose();
    // Writes the slice with the chosen codes into zeroed memory of that size plus BitWriter::overrun.
    void write(std::uint8_t* at) const;

private:
    struct Token {
        std::uint16_t run;   // zeros before the level
        std::uint16_t level; // code value of the level less one
    };
    // How often each small value occurs, and the large values one by one.
    struct Statistics {
        std::array<std::int16_t, tabledValues> counts;
        std::vector<std::uint16_t> large;
        std::uint32_t largest;

        void clear();
        void add(std::uint32_t value);
    };
    struct Choice {
        std::uint32_t code;
        std::uint64_t bits;
    };
    struct BandState {
        std::vector<Token> tokens;
        std::vector<std::uint8_t> tokensOfMacroblock;
        std::size_t tokenCount;
        Statistics levels;
        Statistics runs;
        bool skips;
        std::uint32_t levelCode;
        std::uint32_t runCode;
    };

    void addBand(std::size_t band, const std::int32_t* levels, const std::uint16_t* order);
    std::uint64_t chooseBand(std::size_t band);
    [[nodiscard]] bool mustSpellZeros(std::size_t band) const;
    static Choice cheapest(const Statistics& statistics, std::uint32_t offset, std::uint64_t zeros);
    void writeSkipping(BitWriter& writer, std::size_t band) const;
    void writeSpelled(BitWriter& writer, std::size_t band) const;

    int sliceWidth_;
    int macroblocks_ = 0;
    std::size_t added_ = 0;
    std::array<BandState, bandCount> bands_;
};

} // namespace tavrix::aic
