// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether a process is still the one it was.

#include <QString>

namespace tavrix
{

// A running process as the system lists it: its number may be given to another one later, its start time tells them
// apart.
struct ProcessIdentity {
    int pid = 0;
    quint64 startTime = 0; // clock ticks since the machine was started; 0 when there is no such process
};

// Of the process that has this number now.
[[nodiscard]] ProcessIdentity processIdentity(int pid);
// False when it has ended, also while nobody has reaped it.
[[nodiscard]] bool isRunningAs(const ProcessIdentity& identity);

} // namespace tavrix
