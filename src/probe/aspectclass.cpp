// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/aspectclass.h"

#include <cmath>

namespace tavrix
{

AspectClass aspectClass(float aspect, double tolerance)
{
    // The decimal ratios are meant, not the nearest floats.
    const auto ratio = static_cast<double>(aspect);
    if (std::fabs(ratio - 1.77) < tolerance) {
        return AspectClass::Wide;
    }
    return std::fabs(ratio - 1.33) < tolerance ? AspectClass::Classic : AspectClass::Other;
}

} // namespace tavrix
