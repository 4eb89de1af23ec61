// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/bits.h"

namespace tavrix::aic
{

namespace
{

template <typename Table, typename Make> constexpr std::array<Table, codeCount> makeTables(Make make)
{
    std::array<Table, codeCount> tables{};
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        for (std::uint32_t value = 0; value < tables[index].size(); ++value) {
            tables[index][value] = make(codeOf(index), value);
        }
    }
    return tables;
}

constexpr CodeWord noWord{0, 0};

constexpr auto codeTables = makeTables<CodeTable>(codeWord);
constexpr auto skippingTables = makeTables<CodeTable>(
    [](Code code, std::uint32_t value) { return value == 0 ? noWord : codeWord(code, value - 1); });
constexpr auto spellingTables =
    makeTables<CodeTable>([](Code code, std::uint32_t value) { return value == 0 ? noWord : codeWord(code, value); });
constexpr auto rowTables = makeTables<ZeroRows>(
    [](Code code, std::uint32_t zeros) { return zeros <= longestZeroRow(code) ? zeroRow(code, zeros) : noWord; });

} // namespace

const CodeTable& codeTable(std::uint32_t codeIndex)
{
    return codeTables[codeIndex];
}

const CodeTable& levelTable(std::uint32_t codeIndex, bool skips)
{
    return skips ? skippingTables[codeIndex] : spellingTables[codeIndex];
}

const ZeroRows& zeroRows(std::uint32_t codeIndex)
{
    return rowTables[codeIndex];
}

} // namespace tavrix::aic
