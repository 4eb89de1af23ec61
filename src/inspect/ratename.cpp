// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/ratename.h"

#include "base/text/format.h"
#include "probe/vocabulary.h"

#include <cmath>

namespace tavrix
{

namespace
{

// Less than half of what lies between 29.97 and 30, more than what separates 23.976 from 23.98.
constexpr double tolerance = 0.0125;

// The nearest of the rates that were looked at.
struct Nearest {
    double distance = tolerance;
    StandardRate rate;

    void look(double rateAsked, float candidate, RateKind kind, float full)
    {
        const double away = std::fabs(rateAsked - static_cast<double>(candidate));
        if (away < distance) {
            distance = away;
            rate = {kind, textOf(full)};
        }
    }
};

} // namespace

StandardRate standardRate(double rate)
{
    // The vocabulary pairs each half rate with the full one behind it.
    const QList<float> rates = standardsFpsArray();
    Nearest nearest;
    for (qsizetype i = 0; i + 1 < rates.size(); i += 2) {
        const float full = rates.at(i + 1);
        nearest.look(rate, full, RateKind::Standard, full);
        nearest.look(rate, rates.at(i), RateKind::Half, full);
        nearest.look(rate / 2, full, RateKind::Twice, full);
    }
    return nearest.rate;
}

} // namespace tavrix
