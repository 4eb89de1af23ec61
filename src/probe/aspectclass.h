// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tavrix
{

// The display aspects that camera clips come in.
inline constexpr float wideAspect = 1.77F;
inline constexpr float classicAspect = 1.33F;

enum class AspectClass { Wide, Classic, Other };

// The one of the two that a ratio of width to height is closer to than the tolerance.
[[nodiscard]] AspectClass aspectClass(float aspect, double tolerance = 0.1);

} // namespace tavrix
