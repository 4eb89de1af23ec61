// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/tables.h"

#include <algorithm>

namespace tavrix::aic
{

const std::array<std::uint8_t, 64> quantisationMatrix{8,  16, 19, 22, 22, 26, 26, 27, 16, 16, 22, 22, 26, 27, 27, 29,
                                                      19, 22, 26, 26, 27, 29, 29, 35, 22, 24, 27, 27, 29, 32, 34, 38,
                                                      26, 27, 29, 29, 32, 35, 38, 46, 27, 29, 34, 34, 35, 40, 46, 56,
                                                      29, 34, 34, 37, 40, 48, 56, 69, 34, 37, 38, 40, 48, 58, 69, 83};

namespace
{

// The tiles in their order, each as 4 * block + quarter.
using TileRow = std::array<std::uint8_t, coefficientsPerMacroblock / coefficientsPerTile>;

// Luma base: the upper left quarters. Chroma base: the same. Luma extension: what is left, block by block, and of every
// other block from its end. Chroma extension likewise.
constexpr TileRow frameTiles{0, 4, 8, 12, 16, 20, 2, 1, 3, 7, 5, 6, 10, 9, 11, 15, 13, 14, 18, 17, 19, 23, 21, 22};
// The lines of the first field are in the blocks 0 and 1: their left halves are the luma base.
constexpr TileRow fieldTiles{0, 4, 2, 6, 16, 20, 8, 1, 3, 12, 5, 7, 10, 9, 11, 14, 13, 15, 18, 17, 19, 23, 21, 22};

constexpr CodingOrder makeOrder(const TileRow& tiles)
{
    CodingOrder order{};
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        order[tiles[i] / 4][tiles[i] % 4] = static_cast<std::uint16_t>(coefficientsPerTile * i);
    }
    return order;
}

constexpr CodingOrder progressiveOrder = makeOrder(frameTiles);
constexpr CodingOrder interlacedOrder = makeOrder(fieldTiles);

} // namespace

const CodingOrder& codingOrder(bool interlaced)
{
    return interlaced ? interlacedOrder : progressiveOrder;
}

int Geometry::macroblocksOfSlice(int index) const
{
    return std::min(sliceWidth, macroblockColumns - index * sliceWidth);
}

int Geometry::firstLumaLine(int row, int height) const
{
    return row > 0 && row == macroblockRows - 1 ? height - 16 : 16 * row;
}

int Geometry::firstChromaLine(int row, int height) const
{
    return row > 0 && row == macroblockRows - 1 ? (height + 1) / 2 - 8 : 8 * row;
}

Geometry geometryOf(int width, int height)
{
    constexpr int widestSlice = 32;
    constexpr int unevenSlice = 16;
    Geometry geometry{(width + 15) / 16, (height + 15) / 16, unevenSlice, 0};
    geometry.slicesPerRow = (geometry.macroblockColumns + unevenSlice - 1) / unevenSlice;
    for (int i = 1; i < geometry.macroblockColumns; ++i) {
        if (geometry.macroblockColumns % i == 0 && geometry.macroblockColumns / i <= widestSlice) {
            geometry.sliceWidth = geometry.macroblockColumns / i;
            geometry.slicesPerRow = i;
            break;
        }
    }
    return geometry;
}

bool sizeAllowed(int width, int height)
{
    return width >= smallestSide && height >= smallestSide && width <= largestSide && height <= largestSide;
}

} // namespace tavrix::aic
