// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/bits.h"
#include "aic/tables.h"

#include "steadyrandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

using namespace tavrix::aic;
using tavrix::test::SteadyRandom;

namespace
{

struct Place {
    std::size_t block;
    std::size_t v;
    std::size_t u;
};

// The coefficient that is coded i-th.
Place placeOf(const CodingOrder& order, std::size_t i)
{
    for (std::size_t block = 0; block < order.size(); ++block) {
        for (std::size_t quarter = 0; quarter < 4; ++quarter) {
            const std::size_t first = order[block][quarter];
            if (i >= first && i < first + 16) {
                const std::size_t place = tileWalk[isTurned(block) ? 15 - (i - first) : i - first];
                return {block, place / 4 + quarter / 2 * 4, place % 4 + quarter % 2 * 4};
            }
        }
    }
    return {};
}

TEST(AicTables, CodingOrdersArePermutations)
{
    for (const bool interlaced : {false, true}) {
        std::array<int, coefficientsPerMacroblock> seen{};
        for (std::size_t i = 0; i < seen.size(); ++i) {
            const Place place = placeOf(codingOrder(interlaced), i);
            ++seen[64 * place.block + 8 * place.v + place.u];
        }
        EXPECT_TRUE(std::all_of(seen.begin(), seen.end(), [](int count) { return count == 1; })) << interlaced;
    }
}

TEST(AicTables, AWalkTurnedIsTheWalkBackwards)
{
    for (std::size_t i = 0; i < tileWalk.size(); ++i) {
        EXPECT_EQ(tileWalk[i] + tileWalk[15 - i], 15) << i;
    }
}

TEST(AicTables, BandsFollowOneAnother)
{
    int offset = 0;
    for (const Band& band : bands) {
        EXPECT_EQ(band.offset, offset);
        offset += band.count;
    }
    EXPECT_EQ(offset, coefficientsPerMacroblock);
}

TEST(AicTables, BandsHoldTheirBlocksAndFrequencies)
{
    for (const bool interlaced : {false, true}) {
        const CodingOrder& order = codingOrder(interlaced);
        for (int i = 0; i < coefficientsPerMacroblock; ++i) {
            const auto [block, v, u] = placeOf(order, static_cast<std::size_t>(i));
            const bool luma = i < 64 || (i >= 96 && i < 288);
            EXPECT_EQ(luma, block < 4) << i;
            const bool low = luma && interlaced ? block < 2 && u < 4 : v < 4 && u < 4;
            EXPECT_EQ(low, i < 96) << i << " interlaced " << interlaced;
        }
    }
}

TEST(AicTables, DirectCurrentOfTheFirstBlockComesFirst)
{
    for (const bool interlaced : {false, true}) {
        const Place luma = placeOf(codingOrder(interlaced), 0);
        EXPECT_EQ(luma.block + luma.v + luma.u, 0U);
        const Place chroma = placeOf(codingOrder(interlaced), 64);
        EXPECT_EQ(chroma.block, 4U);
        EXPECT_EQ(chroma.v + chroma.u, 0U);
    }
    EXPECT_EQ(quantisationMatrix[0], 8);
    EXPECT_EQ(quantisationMatrix[63], 83);
}

struct GeometryRow {
    int width;
    int height;
    int columns;
    int rows;
    int sliceWidth;
    int slicesPerRow;
    int lastSlice;
};

class AicGeometry : public testing::TestWithParam<GeometryRow>
{
};

TEST_P(AicGeometry, CutsThePicture)
{
    const GeometryRow& row = GetParam();
    const Geometry geometry = geometryOf(row.width, row.height);
    EXPECT_EQ(geometry.macroblockColumns, row.columns);
    EXPECT_EQ(geometry.macroblockRows, row.rows);
    EXPECT_EQ(geometry.sliceWidth, row.sliceWidth);
    EXPECT_EQ(geometry.slicesPerRow, row.slicesPerRow);
    EXPECT_EQ(geometry.macroblocksOfSlice(row.slicesPerRow - 1), row.lastSlice);
    int macroblocks = 0;
    for (int slice = 0; slice < geometry.slicesPerRow; ++slice) {
        macroblocks += geometry.macroblocksOfSlice(slice);
    }
    EXPECT_EQ(macroblocks, row.columns);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, AicGeometry,
    testing::Values(GeometryRow{1920, 1080, 120, 68, 30, 4, 30}, GeometryRow{1440, 1080, 90, 68, 30, 3, 30},
                    GeometryRow{1280, 720, 80, 45, 20, 4, 20}, GeometryRow{960, 720, 60, 45, 30, 2, 30},
                    GeometryRow{720, 576, 45, 36, 15, 3, 15}, GeometryRow{720, 480, 45, 30, 15, 3, 15},
                    GeometryRow{640, 480, 40, 30, 20, 2, 20}, GeometryRow{848, 480, 53, 30, 16, 4, 5},
                    GeometryRow{1366, 768, 86, 48, 2, 43, 2}, GeometryRow{16, 16, 1, 1, 16, 1, 1},
                    GeometryRow{17, 17, 2, 2, 2, 1, 2}),
    [](const testing::TestParamInfo<GeometryRow>& row) {
        return std::to_string(row.param.width) + "by" + std::to_string(row.param.height);
    });

TEST(AicGeometryRows, LastRowOverlapsInsteadOfBeingPadded)
{
    const Geometry geometry = geometryOf(1920, 1080);
    EXPECT_EQ(geometry.firstLumaLine(66, 1080), 1056);
    EXPECT_EQ(geometry.firstLumaLine(67, 1080), 1064);
    EXPECT_EQ(geometry.firstChromaLine(67, 1080), 532);
    EXPECT_EQ(geometryOf(33, 17).firstLumaLine(1, 17), 1);
    EXPECT_EQ(geometryOf(33, 17).firstChromaLine(1, 17), 1);
    EXPECT_EQ(geometryOf(33, 16).firstLumaLine(0, 16), 0);
}

TEST(AicGeometryRows, SizesOutsideTheFormatAreRefused)
{
    EXPECT_TRUE(sizeAllowed(16, 16));
    EXPECT_TRUE(sizeAllowed(4096, 4096));
    EXPECT_FALSE(sizeAllowed(15, 16));
    EXPECT_FALSE(sizeAllowed(16, 15));
    EXPECT_FALSE(sizeAllowed(4097, 16));
    EXPECT_FALSE(sizeAllowed(0, 0));
    EXPECT_FALSE(sizeAllowed(-16, 16));
}

std::string bitsOf(const std::vector<CodeWord>& words)
{
    std::array<std::uint8_t, 64> memory{};
    BitWriter writer(memory.data());
    std::uint32_t count = 0;
    for (const CodeWord& word : words) {
        writer.put(word);
        count += word.length;
    }
    const std::uint8_t* end = writer.finish();
    EXPECT_EQ(end - memory.data(), (count + 7) / 8);
    std::string text;
    for (std::uint32_t i = 0; i < count; ++i) {
        text += (memory[i / 8] >> (7 - i % 8) & 1) != 0 ? '1' : '0';
    }
    return text;
}

struct CodeRow {
    const char* name;
    Code code;
    std::uint32_t value;
    const char* bits;
};

class AicCodes : public testing::TestWithParam<CodeRow>
{
};

TEST_P(AicCodes, AreWrittenBitByBit)
{
    const CodeRow& row = GetParam();
    EXPECT_EQ(bitsOf({codeWord(row.code, row.value)}), row.bits);
    EXPECT_EQ(codeLength(row.code, row.value), std::string(row.bits).size());
}

INSTANTIATE_TEST_SUITE_P(
    Words, AicCodes,
    testing::Values(CodeRow{"Rice0Zero", {false, 0}, 0, "1"}, CodeRow{"Rice0Three", {false, 0}, 3, "0001"},
                    CodeRow{"Rice2Six", {false, 2}, 6, "0110"},
                    CodeRow{"Rice0ThirtyOneHasNoEnd", {false, 0}, 31, "0000000000000000000000000000000"},
                    CodeRow{"Rice7Largest", {false, 7}, 4095, "00000000000000000000000000000001111111"},
                    CodeRow{"Golomb0Zero", {true, 0}, 0, "1"}, CodeRow{"Golomb0One", {true, 0}, 1, "010"},
                    CodeRow{"Golomb0Six", {true, 0}, 6, "00111"}, CodeRow{"Golomb1Five", {true, 1}, 5, "0111"}),
    [](const testing::TestParamInfo<CodeRow>& row) { return std::string(row.param.name); });

TEST(AicBits, UnaryPrefixesEndAtThirtyOne)
{
    EXPECT_TRUE(codeHolds({false, 0}, 31));
    EXPECT_FALSE(codeHolds({false, 0}, 32));
    EXPECT_TRUE(codeHolds({false, 7}, 4095));
    EXPECT_FALSE(codeHolds({false, 7}, 4096));
    EXPECT_TRUE(codeHolds({true, 0}, 8190));
}

TEST(AicBits, TablesAgreeWithTheCodes)
{
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        for (std::uint32_t value = 0; value < tabledValues; ++value) {
            if (!codeHolds(codeOf(index), value)) {
                continue;
            }
            const CodeWord word = codeWord(codeOf(index), value);
            const auto isWord = [&word](const CodeWord& tabled) {
                return tabled.bits == word.bits && tabled.length == word.length;
            };
            EXPECT_TRUE(isWord(codeTable(index)[value]));
            EXPECT_TRUE(value == 0 || isWord(levelTable(index, false)[value]));
            EXPECT_TRUE(value + 1 == tabledValues || isWord(levelTable(index, true)[value + 1]));
        }
    }
}

TEST(AicBits, RowsOfZerosAreTheSingleOnesInARow)
{
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        const Code code = codeOf(index);
        for (std::uint32_t zeros = 0; zeros <= longestZeroRow(code); ++zeros) {
            EXPECT_EQ(bitsOf({zeroRow(code, zeros)}), bitsOf(std::vector<CodeWord>(zeros, codeWord(code, 0))));
            EXPECT_EQ(bitsOf({zeroRows(index)[zeros]}), bitsOf({zeroRow(code, zeros)}));
        }
    }
}

// The reference writer appends characters.
TEST(AicBits, WriterKeepsEveryBitOfAnyMixture)
{
    SteadyRandom random(4);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::uint8_t> memory(4096 + BitWriter::overrun);
        BitWriter writer(memory.data());
        std::string expected;
        const auto word = [&] {
            const CodeWord made{random(), 1 + random() % 39};
            const CodeWord kept{made.length < 32 ? made.bits & ((1U << made.length) - 1) : made.bits, made.length};
            for (std::uint32_t i = kept.length; i-- > 0;) {
                expected += i < 32 && (kept.bits >> i & 1) != 0 ? '1' : '0';
            }
            return kept;
        };
        for (int i = 0; i < 300; ++i) {
            const CodeWord first = word();
            const std::uint32_t way = random() % 3;
            if (way == 0) {
                writer.put(first);
                continue;
            }
            const CodeWord second = word();
            const bool fits = first.length + second.length <= BitWriter::longestTogether;
            if (way == 1 || !fits) {
                writer.put(first, second);
                continue;
            }
            const CodeWord third = word();
            writer.putLong(joined(first, second), {third.bits, third.length});
        }
        writer.finish();
        std::string actual;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            actual += (memory[i / 8] >> (7 - i % 8) & 1) != 0 ? '1' : '0';
        }
        ASSERT_EQ(actual, expected);
    }
}

} // namespace
