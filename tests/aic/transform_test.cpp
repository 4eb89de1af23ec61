// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/transform.h"

#include "aic/widetransform.h"
#include "steadyrandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

using namespace tavrix::aic;
using tavrix::test::SteadyRandom;

namespace
{

constexpr std::ptrdiff_t stride = 24;
using Samples = std::array<std::uint8_t, 8 * stride>;
using Values = std::array<CodeValue, 64>;
using Levels = std::array<int, 64>; // column by column

Samples samplesOf(SteadyRandom& random, int kind)
{
    Samples samples{};
    for (std::uint8_t& sample : samples) {
        const auto value = static_cast<std::uint8_t>(random() % 256);
        sample = kind == 0 ? value : static_cast<std::uint8_t>(kind == 1 ? (value < 128 ? 0 : 255) : 100 + value % 8);
    }
    return samples;
}

// Lower right, upper left, lower left, upper right: any order that is none of the encoder's.
constexpr QuarterPlaces places{16, 48, 32, 0};

Values valuesOf(Transform transform, const Samples& samples, int quantiser, bool turned)
{
    Values values{};
    const LevelFactors factors = levelFactors(quantiser);
    transform(samples.data(), stride, factors.data(), places.data(), turned, values.data());
    return values;
}

// What the places, the walk and the folding made of the levels, undone.
Levels levelsOf(const Values& values, bool turned)
{
    Levels levels{};
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t place = tileWalk[turned ? 15 - i : i];
            const int value = values[places[quarter] + i];
            const std::size_t u = place % 4 + quarter % 2 * 4;
            const std::size_t v = place / 4 + quarter / 2 * 4;
            levels[8 * u + v] = value % 2 == 1 ? -(value + 1) / 2 : value / 2;
        }
    }
    return levels;
}

TEST(AicTransform, AllFormsGiveTheSameLevels)
{
    SteadyRandom random(7);
    const Transform wide = wideTransform();
    for (int i = 0; i < 3000; ++i) {
        const Samples samples = samplesOf(random, i % 3);
        const int quantiser = 1 + i % 255;
        const bool turned = i / 3 % 2 == 1;
        const Values plain = valuesOf(plainTransform(), samples, quantiser, turned);
        ASSERT_EQ(valuesOf(vectorTransform(), samples, quantiser, turned), plain);
        ASSERT_EQ(valuesOf(bestTransform(), samples, quantiser, turned), plain);
        if (wide != nullptr) {
            ASSERT_EQ(valuesOf(wide, samples, quantiser, turned), plain);
        }
    }
}

TEST(AicTransform, PlainFormIsTheCosineTransform)
{
    SteadyRandom random(8);
    const Samples samples = samplesOf(random, 0);
    const Levels levels = levelsOf(valuesOf(plainTransform(), samples, 1, false), false);
    EXPECT_EQ(levelsOf(valuesOf(plainTransform(), samples, 1, true), true), levels);
    const LevelFactors factors = levelFactors(1);
    for (int u = 0; u < 8; ++u) {
        for (int v = 0; v < 8; ++v) {
            double sum = 0;
            for (int y = 0; y < 8; ++y) {
                for (int x = 0; x < 8; ++x) {
                    sum += (samples[static_cast<std::size_t>(y * stride + x)] - 128.0) *
                           std::cos((2 * x + 1) * u * std::numbers::pi / 16) *
                           std::cos((2 * y + 1) * v * std::numbers::pi / 16);
                }
            }
            // The scale of the fast form: 1 for the first frequency, else the square root of 2 times a cosine.
            const auto scale = [](int k) {
                return k == 0 ? 1.0 : std::numbers::sqrt2 * std::cos(k * std::numbers::pi / 16);
            };
            const auto norm = [](int k) {
                return k == 0 ? 1.0 : std::numbers::sqrt2;
            };
            const double expected =
                sum * norm(u) * norm(v) * scale(u) * scale(v) * factors[static_cast<std::size_t>(8 * u + v)];
            EXPECT_NEAR(levels[static_cast<std::size_t>(8 * u + v)], expected, 0.502) << u << ' ' << v;
        }
    }
}

} // namespace
