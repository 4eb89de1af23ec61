// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The transform compiled for processors with AVX2.

#include "prores/transform.h"

namespace tavrix::prores
{

// Null where the processor has no AVX2, or where it is not compiled for such processors.
[[nodiscard]] Transform wideTransform();

} // namespace tavrix::prores
