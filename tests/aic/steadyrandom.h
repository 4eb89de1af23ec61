// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <random>

namespace tavrix::test
{

// The same numbers everywhere: the standard fixes this engine, but not its type.
class SteadyRandom
{
public:
    explicit SteadyRandom(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine_()); }

private:
    std::mt19937 engine_;
};

} // namespace tavrix::test
