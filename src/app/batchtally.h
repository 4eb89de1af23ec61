// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How the rows of a batch have ended.

#include "app/batchlist.h"

namespace tavrix
{

struct BatchTally {
    int converted = 0;
    int incomplete = 0; // converted as far as the damaged source could be read
    int failed = 0;     // those that are kept included
    int kept = 0;       // not converted, since what stood under the name was to be kept
    int notBegun = 0;   // their turn has not come

    void count(const BatchRow& row)
    {
        if (row.resultat == rowIcon::pending) {
            ++notBegun;
        } else if (row.hasFailed()) {
            ++failed;
            kept += row.kept ? 1 : 0;
        } else if (row.incomplete) {
            ++incomplete;
        } else {
            ++converted;
        }
    }
};

// Of all rows.
[[nodiscard]] BatchTally tallyOf(const BatchList& rows);
// "66 of 200 clips converted, 1 failed, 133 not begun", in the user's language; what there is none of is left out.
[[nodiscard]] QString tallyText(const BatchTally& tally);

} // namespace tavrix
