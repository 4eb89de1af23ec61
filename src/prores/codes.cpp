// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/codes.h"

namespace tavrix::prores
{

namespace
{

constexpr std::array<RunTable, runCodes.size()> makeRunTables()
{
    std::array<RunTable, runCodes.size()> tables{};
    for (std::size_t before = 0; before < tables.size(); ++before) {
        for (std::size_t value = 0; value < tabledValues; ++value) {
            tables[before][value] = codeWord(runCodes[before], static_cast<std::uint32_t>(value));
        }
    }
    return tables;
}

constexpr std::array<LevelTable, levelCodes.size()> makeLevelTables()
{
    std::array<LevelTable, levelCodes.size()> tables{};
    for (std::size_t before = 0; before < tables.size(); ++before) {
        for (std::size_t value = 0; value < tabledValues; ++value) {
            const auto level = static_cast<std::uint32_t>(value);
            tables[before][2 * value] = signedWord(levelCodes[before], level, 0);
            tables[before][2 * value + 1] = signedWord(levelCodes[before], level, 1);
        }
    }
    return tables;
}

} // namespace

constinit const std::array<RunTable, runCodes.size()> runTables = makeRunTables();
constinit const std::array<LevelTable, levelCodes.size()> levelTables = makeLevelTables();

} // namespace tavrix::prores
