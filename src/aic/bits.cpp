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

constexpr auto codeTables = makeTables<CodeTable>(codeWord);
constexpr auto lengthTables = makeTables<LengthTable>(
    [](Code code, std::uint32_t value) { return static_cast<std::int16_t>(codeLength(code, value)); });

} // namespace

const CodeTable& codeTable(std::uint32_t codeIndex)
{
    return codeTables[codeIndex];
}

const LengthTable& lengthTable(std::uint32_t codeIndex)
{
    return lengthTables[codeIndex];
}

} // namespace tavrix::aic
