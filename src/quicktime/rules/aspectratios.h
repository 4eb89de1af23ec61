// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Shapes of pictures and pixels as ratios.

#include <QStringList>

namespace tavrix
{

// Display and pixel aspect, each as "N:M", of a picture shown as displayed width x height and stored as encoded width x
// height. An encoded size of 1 x 1 is unknown: the pixels then count as square. An empty list when a size is 0 where a
// ratio needs it.
[[nodiscard]] QStringList DarPar(int displayedWidth, int displayedHeight, int encodedWidth, int encodedHeight);

} // namespace tavrix
