// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Names of frame rates.

#include <QString>

namespace tavrix
{

// How a rate stands to one of the standard rates of the vocabulary.
enum class RateKind { Unknown, Standard, Half, Twice };

struct StandardRate {
    RateKind kind = RateKind::Unknown;
    QString text; // the full standard rate: "25", "23.98", "24", "29.97", "30"; nothing when unknown
};

// 59.94 is twice 29.97, 12.5 is half of 25. A rate counts as standard within 0.0125 of it: 23.976 is 23.98, 30.02 is
// no standard rate.
[[nodiscard]] StandardRate standardRate(double rate);

} // namespace tavrix
