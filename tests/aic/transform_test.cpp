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
using Levels = std::array<std::int32_t, 64>;

Samples samplesOf(SteadyRandom& random, int kind)
{
    Samples samples{};
    for (std::uint8_t& sample : samples) {
        const auto value = static_cast<std::uint8_t>(random() % 256);
        sample = kind == 0 ? value : static_cast<std::uint8_t>(kind == 1 ? (value < 128 ? 0 : 255) : 100 + value % 8);
    }
    return samples;
}

Levels levelsOf(Transform transform, const Samples& samples, int quantiser)
{
    Levels levels{};
    const LevelFactors factors = levelFactors(quantiser);
    transform(samples.data(), stride, factors.data(), levels.data());
    return levels;
}

TEST(AicTransform, AllFormsGiveTheSameLevels)
{
    SteadyRandom random(7);
    const Transform wide = wideTransform();
    for (int i = 0; i < 3000; ++i) {
        const Samples samples = samplesOf(random, i % 3);
        const int quantiser = 1 + i % 255;
        const Levels plain = levelsOf(plainTransform(), samples, quantiser);
        ASSERT_EQ(levelsOf(vectorTransform(), samples, quantiser), plain);
        ASSERT_EQ(levelsOf(bestTransform(), samples, quantiser), plain);
        if (wide != nullptr) {
            ASSERT_EQ(levelsOf(wide, samples, quantiser), plain);
        }
    }
}

TEST(AicTransform, PlainFormIsTheCosineTransform)
{
    SteadyRandom random(8);
    const Samples samples = samplesOf(random, 0);
    const Levels levels = levelsOf(plainTransform(), samples, 1);
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
