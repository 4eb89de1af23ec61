// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A tool that neither says nor does anything.

#include "process/childactivity.h"

#include <functional>

namespace tavrix
{

// Adds up how long a running child has been silent. Only time that it is told of counts, so that a paused child, a
// stopped program and a clock that is set do not.
class SilenceWatch
{
public:
    // A child begins, or whatever was before counts no more.
    void begin();
    // The child has written something.
    void heard() { heard_ = true; }

    // That many milliseconds have passed. True when the child has been silent for the limit: it has written nothing,
    // its processes have read and written no byte and used no processor time. One that only computes may take ten times
    // as long. What it does is asked for only when nothing was heard.
    [[nodiscard]] bool pass(qint64 milliseconds, qint64 limit, const std::function<ChildActivity()>& activity);

private:
    ChildActivity last_;
    bool known_ = false;
    bool heard_ = false;
    qint64 idle_ = 0;  // without anything
    qint64 quiet_ = 0; // with processor time at most
};

} // namespace tavrix
