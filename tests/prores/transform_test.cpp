// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/transform.h"

#include "prores/widetransform.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

using namespace tavrix::prores;

namespace
{

constexpr std::ptrdiff_t stride = 80;
using Samples = std::vector<std::uint16_t>;
using Coefficients = std::array<std::int16_t, 64 * blocksOfSlice>;

Samples samplesOf(std::mt19937& random, int kind)
{
    Samples samples(8 * stride);
    for (std::uint16_t& sample : samples) {
        const auto value = static_cast<std::uint16_t>(random() % 1024);
        sample = kind == 0 ? value : static_cast<std::uint16_t>(kind == 1 ? (value < 512 ? 0 : 1023) : 500 + value % 9);
    }
    return samples;
}

Coefficients coefficientsOf(Transform transform, const Samples& samples)
{
    Coefficients coefficients{};
    std::array<const std::uint16_t*, blocksTogether> blocks{};
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] = samples.data() + 9 * i; // they may overlap and start anywhere
    }
    transform(blocks.data(), stride, coefficients.data() + 16);
    return coefficients;
}

TEST(ProResTransform, AllFormsGiveTheSameCoefficients)
{
    std::mt19937 random(7);
    const Transform wide = wideTransform();
    for (int i = 0; i < 500; ++i) {
        const Samples samples = samplesOf(random, i % 3);
        const Coefficients plain = coefficientsOf(plainTransform(), samples);
        ASSERT_EQ(coefficientsOf(vectorTransform(), samples), plain);
        ASSERT_EQ(coefficientsOf(bestTransform(), samples), plain);
        if (wide != nullptr) {
            ASSERT_EQ(coefficientsOf(wide, samples), plain);
        }
    }
}

TEST(ProResTransform, PlainFormIsTheCosineTransform)
{
    std::mt19937 random(8);
    const Samples samples = samplesOf(random, 0);
    const Coefficients coefficients = coefficientsOf(plainTransform(), samples);
    for (std::size_t block = 0; block < blocksTogether; ++block) {
        for (std::size_t i = 0; i < 64; ++i) {
            double sum = 0;
            for (std::size_t y = 0; y < 8; ++y) {
                for (std::size_t x = 0; x < 8; ++x) {
                    sum += samples[9 * block + y * stride + x] *
                           std::cos((2.0 * static_cast<double>(x) + 1) * static_cast<double>(i % 8) * std::numbers::pi /
                                    16) *
                           std::cos((2.0 * static_cast<double>(y) + 1) * static_cast<double>(i / 8) * std::numbers::pi /
                                    16);
                }
            }
            const double norm = (i % 8 == 0 ? 1 : std::numbers::sqrt2) * (i / 8 == 0 ? 1 : std::numbers::sqrt2);
            EXPECT_NEAR(coefficients[blocksOfSlice * i + 16 + block], sum * norm / 2, 2.0) << block << ' ' << i;
        }
    }
}

} // namespace
