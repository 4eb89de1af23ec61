#include "aic/tables.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace tavrix::aic
{

const std::array<std::uint8_t, 64> quantisationMatrix{8,  16, 19, 22, 22, 26, 26, 27, 16, 16, 22, 22, 26, 27, 27, 29,
                                                      19, 22, 26, 26, 27, 29, 29, 35, 22, 24, 27, 27, 29, 32, 34, 38,
                                                      26, 27, 29, 29, 32, 35, 38, 46, 27, 29, 34, 34, 35, 40, 46, 56,
                                                      29, 34, 34, 37, 40, 48, 56, 69, 34, 37, 38, 40, 48, 58, 69, 83};

namespace
{

// A tile of 4x4 positions inside a band, walked forwards or turned by half a circle.
struct Tile {
    int base;
    int stride;
    bool reversed;
};

struct Cell {
    int row;
    int column;
};
constexpr std::array<Cell, 16> tileWalk{{{0, 0},
                                         {1, 0},
                                         {0, 1},
                                         {0, 2},
                                         {1, 1},
                                         {2, 0},
                                         {3, 0},
                                         {2, 1},
                                         {1, 2},
                                         {0, 3},
                                         {1, 3},
                                         {2, 2},
                                         {3, 1},
                                         {3, 2},
                                         {2, 3},
                                         {3, 3}}};

constexpr std::array<Tile, 4> frameBaseTiles{{{0, 4, false}, {16, 4, true}, {32, 4, false}, {48, 4, true}}};
constexpr std::array<Tile, 4> fieldBaseTiles{{{0, 4, false}, {32, 4, true}, {16, 4, false}, {48, 4, true}}};
constexpr std::array<Tile, 12> frameExtensionTiles{{{16, 8, false},
                                                    {0, 4, false},
                                                    {20, 8, false},
                                                    {68, 8, true},
                                                    {48, 4, true},
                                                    {64, 8, true},
                                                    {112, 8, false},
                                                    {96, 4, false},
                                                    {116, 8, false},
                                                    {164, 8, true},
                                                    {144, 4, true},
                                                    {160, 8, true}}};
constexpr std::array<Tile, 12> fieldExtensionTiles{{{64, 8, false},
                                                    {0, 4, false},
                                                    {16, 4, false},
                                                    {128, 8, true},
                                                    {32, 4, true},
                                                    {48, 4, true},
                                                    {96, 8, false},
                                                    {68, 8, false},
                                                    {100, 8, false},
                                                    {160, 8, true},
                                                    {132, 8, true},
                                                    {164, 8, true}}};

constexpr int place(int block, int v, int u)
{
    return 64 * block + 8 * v + u;
}

// The low 4x4 of every block, 16 positions each.
constexpr int frameBasePlace(int position)
{
    return place(position / 16, position % 16 / 4, position % 4);
}

// What the low 4x4 leaves of every block, 48 positions each.
constexpr int frameExtensionPlace(int position)
{
    const int rest = position % 48;
    return rest < 16 ? place(position / 48, rest / 4, 4 + rest % 4)
                     : place(position / 48, 4 + (rest - 16) / 8, (rest - 16) % 8);
}

// The left halves of the two blocks of the even lines.
constexpr int fieldBasePlace(int position)
{
    return place(position / 32, position % 32 / 4, position % 4);
}

// The right halves of the blocks of the even lines, then the whole blocks of the odd lines.
constexpr int fieldExtensionPlace(int position)
{
    return position < 64 ? place(position / 32, position % 32 / 4, 4 + position % 4)
                         : place(2 + (position - 64) / 64, (position - 64) % 64 / 8, position % 8);
}

using PlaceOf = int (*)(int);

void appendBand(CodingOrder& order, const Band& band, std::span<const Tile> tiles, PlaceOf placeOf, int firstBlock)
{
    auto next = static_cast<std::size_t>(band.offset);
    for (const Tile& tile : tiles.first(static_cast<std::size_t>(band.count / 16))) {
        for (const Cell& cell : tileWalk) {
            const int row = tile.reversed ? 3 - cell.row : cell.row;
            const int column = tile.reversed ? 3 - cell.column : cell.column;
            const int position = tile.base + row * tile.stride + column;
            order[next++] = static_cast<std::uint16_t>(64 * firstBlock + placeOf(position));
        }
    }
}

CodingOrder makeOrder(bool interlaced)
{
    CodingOrder order{};
    if (interlaced) {
        appendBand(order, bands[0], fieldBaseTiles, fieldBasePlace, 0);
        appendBand(order, bands[2], fieldExtensionTiles, fieldExtensionPlace, 0);
    } else {
        appendBand(order, bands[0], frameBaseTiles, frameBasePlace, 0);
        appendBand(order, bands[2], frameExtensionTiles, frameExtensionPlace, 0);
    }
    appendBand(order, bands[1], frameBaseTiles, frameBasePlace, 4);
    appendBand(order, bands[3], frameExtensionTiles, frameExtensionPlace, 4);
    return order;
}

} // namespace

const CodingOrder& codingOrder(bool interlaced)
{
    static const CodingOrder progressiveOrder = makeOrder(false);
    static const CodingOrder interlacedOrder = makeOrder(true);
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
