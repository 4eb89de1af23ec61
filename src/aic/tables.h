#pragma once

// The fixed tables of the Apple Intermediate Codec: how a frame is cut into slices and in which order the coefficients
// of a macroblock are coded.

#include <array>
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

// Coding order of all four bands, one after the other: entry i is the place 64 * block + 8 * v + u of the coefficient
// that is coded i-th. Blocks 0 to 3 are luma, 4 is Cb, 5 is Cr.
using CodingOrder = std::array<std::uint16_t, coefficientsPerMacroblock>;
const CodingOrder& codingOrder(bool interlaced);

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
