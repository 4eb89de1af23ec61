// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/slice.h"

#include "steadyrandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

using namespace tavrix::aic;
using tavrix::test::SteadyRandom;

namespace
{

constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

// The bits of the cheapest code, word by word.
std::uint64_t cheapestBits(const std::vector<std::uint32_t>& values)
{
    std::uint64_t best = never;
    for (std::uint32_t index = 0; index < codeCount; ++index) {
        const Code code = codeOf(index);
        std::uint64_t bits = 0;
        for (const std::uint32_t value : values) {
            bits = !codeHolds(code, value) || bits == never ? never : bits + codeLength(code, value);
        }
        best = std::min(best, bits);
    }
    return best;
}

std::uint64_t bandBits(const std::vector<std::vector<CodeValue>>& macroblocks, const Band& band)
{
    std::vector<std::uint32_t> levels;
    std::vector<std::uint32_t> runs;
    std::vector<std::uint32_t> spelled;
    for (const std::vector<CodeValue>& values : macroblocks) {
        std::uint32_t run = 0;
        for (int i = band.offset; i < band.offset + band.count; ++i) {
            const std::uint32_t value = values[static_cast<std::size_t>(i)];
            spelled.push_back(value);
            if (value == 0) {
                ++run;
                continue;
            }
            levels.push_back(value - 1);
            runs.push_back(run);
            run = 0;
        }
        if (run > 0) {
            runs.push_back(run);
        }
    }
    const std::uint64_t skipping = 9 + cheapestBits(levels) + cheapestBits(runs);
    const bool dense = 3 * levels.size() > spelled.size();
    return dense ? std::min(skipping, 5 + cheapestBits(spelled)) : skipping;
}

// Values up to two thresholds of the codes, now and then, among small ones.
std::vector<CodeValue> randomValues(SteadyRandom& random)
{
    constexpr std::array<std::uint32_t, 8> thresholds{1, 31, 32, 62, 124, 255, 992, 4000};
    const std::uint32_t density = 1 + random() % 100;
    const std::uint32_t large = thresholds[random() % thresholds.size()] + random() % 2;
    const std::uint32_t small = 1 + random() % 12;
    std::vector<CodeValue> values(coefficientsPerMacroblock);
    for (CodeValue& value : values) {
        if (random() % 100 < density) {
            value = static_cast<CodeValue>(random() % 40 == 0 ? large : 1 + random() % small);
        }
    }
    return values;
}

TEST(AicSlice, SizeIsThatOfTheCheapestCodes)
{
    SteadyRandom random(31);
    for (int round = 0; round < 2000; ++round) {
        const int width = 1 + static_cast<int>(random() % 4);
        SliceCoder coder(width);
        coder.begin(width);
        std::vector<std::vector<CodeValue>> macroblocks;
        for (int i = 0; i < width; ++i) {
            macroblocks.push_back(randomValues(random));
            coder.addMacroblock(macroblocks.back().data());
        }
        std::uint64_t bits = 0;
        for (const Band& band : bands) {
            bits += bandBits(macroblocks, band);
        }
        ASSERT_EQ(coder.choose(), (bits + 31) / 32 * 4) << round;
    }
}

} // namespace
