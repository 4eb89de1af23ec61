// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The fixed tables of the Apple Intermediate Codec: how a frame is cut into slices and in which order the coefficients
// of a macroblock are coded.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tavrix::aic
{

inline constexpr int bandCount = 4;
inline constexpr int coefficientsPerMacroblock = 384;
inline constexpr int smallestSide = 16;
inline constexpr int largestSide = 4096;

// A macroblock's share of a band: `count` coefficients that start at `offset` of the macroblock's coding order.
struct Band {
    int offset;
    int count;
};
// Luma base, chroma base, luma extension, chroma extension.
inline constexpr std::array<Band, bandCount> bands{{{0, 64}, {64, 32}, {96, 192}, {288, 96}}};

// Weight of the coefficient of vertical frequency v and horizontal frequency u at 8 * v + u.
extern const std::array<std::uint8_t, 64> quantisationMatrix;

// Where the quarters of a block stand in a macroblock's coding order: upper left, upper right, lower left, lower right.
// Each quarter is a tile of 4x4 coefficients that are coded one after the other.
inline constexpr int coefficientsPerTile = 16;
using QuarterPlaces = std::array<std::uint16_t, 4>;
// Of the six blocks of a macroblock; 0 to 3 are luma, 4 is Cb, 5 is Cr.
using CodingOrder = std::array<QuarterPlaces, 6>;
const CodingOrder& codingOrder(bool interlaced);
// The tiles of the blocks 1, 3 and 5 are walked from their ends, in either order.
constexpr bool isTurned(std::size_t block)
{
    return block % 2 == 1;
}

// The walk through a tile: entry i is the place 4 * v + u inside the tile of the coefficient that is coded i-th. Turned
// by half a circle it is the same walk backwards.
inline constexpr std::array<std::uint8_t, coefficientsPerTile> tileWalk{0, 4, 1, 2,  5,  8,  12, 9,
                                                                        6, 3, 7, 10, 13, 14, 11, 15};

// How a picture is cut: macroblocks per row and column, macroblocks in a full slice, slices in a row.
struct Geometry {
    int macroblockColumns;
    int macroblockRows;
    int sliceWidth;
    int slicesPerRow;

    [[nodiscard]] int slices() const { return slicesPerRow * macroblockRows; }
    // Macroblocks of slice number `index` of a row: fewer than sliceWidth in the last one of an uneven row.
    [[nodiscard]] int macroblocksOfSlice(int index) const;
    // First luma and chroma line of a macroblock row. The last row is not padded but overlaps the one above.
    [[nodiscard]] int firstLumaLine(int row, int height) const;
    [[nodiscard]] int firstChromaLine(int row, int height) const;
};
[[nodiscard]] Geometry geometryOf(int width, int height);
[[nodiscard]] bool sizeAllowed(int width, int height);

} // namespace tavrix::aic
