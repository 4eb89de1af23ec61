// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/silencewatch.h"

#include <utility>

namespace tavrix
{

namespace
{

constexpr qint64 patienceWithComputing = 10;

} // namespace

void SilenceWatch::begin()
{
    known_ = false;
    heard_ = false;
    idle_ = 0;
    quiet_ = 0;
}

bool SilenceWatch::pass(qint64 milliseconds, qint64 limit, const std::function<ChildActivity()>& activity)
{
    if (std::exchange(heard_, false)) {
        begin();
        return false;
    }
    const ChildActivity now = activity();
    const ChildActivity before = std::exchange(last_, now);
    const bool known = std::exchange(known_, true);
    idle_ += milliseconds;
    quiet_ += milliseconds;
    if (known && now.bytes != before.bytes) {
        idle_ = 0;
        quiet_ = 0;
    } else if (known && now.ticks != before.ticks) {
        idle_ = 0;
    }
    return idle_ >= limit || quiet_ >= patienceWithComputing * limit;
}

} // namespace tavrix
