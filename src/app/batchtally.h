#pragma once

// How the rows of a batch have ended.

#include "app/batchlist.h"

namespace tavrix
{

struct BatchTally {
    int converted = 0;
    int incomplete = 0; // converted as far as the damaged source could be read
    int failed = 0;

    void count(const BatchRow& row)
    {
        if (row.hasFailed()) {
            ++failed;
        } else if (row.incomplete) {
            ++incomplete;
        } else {
            ++converted;
        }
    }
};

} // namespace tavrix
