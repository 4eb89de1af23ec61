// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The transform in eight columns at once, for processors with AVX2.

#include <cstddef>
#include <cstdint>

namespace tavrix::aic
{

// Like plainTransform(); only where the processor has AVX2, and null where it is not compiled for such processors.
using WideTransform = void (*)(const std::uint8_t* samples, std::ptrdiff_t stride, const float* factors,
                               const std::uint16_t* places, bool turned, std::uint16_t* values);
[[nodiscard]] WideTransform wideTransform();

} // namespace tavrix::aic
