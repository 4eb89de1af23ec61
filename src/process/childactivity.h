// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether child processes get on, whatever they print.

#include <QtGlobal>

#include <sys/types.h>

#include <vector>

namespace tavrix
{

struct ChildActivity {
    quint64 bytes = 0; // read and written so far
    quint64 ticks = 0; // of processor time so far

    [[nodiscard]] bool operator==(const ChildActivity&) const = default;
};

// Of all processes of these groups together. What cannot be asked counts nothing.
[[nodiscard]] ChildActivity activityOfGroups(const std::vector<pid_t>& groups);

} // namespace tavrix
