// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Starting of child processes: the only fork.

#include "sys/result.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tavrix
{

// What to start and how its streams are connected. Descriptors stay the caller's; one that becomes a standard stream is
// above these or is that very stream.
struct SpawnRequest {
    static constexpr int inherited = -1;  // this program's own stream
    static constexpr int nullDevice = -2; // for the input only

    std::string program;                                          // path; PATH is not searched
    std::vector<std::string> arguments;                           // the name that the program is told first
    std::vector<std::pair<std::string, std::string>> environment; // set on top of this program's own
    std::vector<std::string> removedVariables;
    std::string workingFolder; // "": this program's
    int input = nullDevice;
    int output = inherited;
    int error = inherited;
    std::vector<int> inheritedDescriptors; // stay open in the child, under their numbers
    bool ownGroup = false;                 // the child leads a process group of its own
};

// Starts the child and returns its process id once the program has been executed; it is the caller's to reap. The child
// has default signal handling, an empty signal mask and no other descriptors, and the system kills it when the thread
// that has started it ends, as all do with their program. When it cannot be started, no process is left.
[[nodiscard]] Result<pid_t> spawn(const SpawnRequest& request);

// Does the work in a copy of this process, which ends with its answer as status, and returns the copy's id; it is the
// caller's to reap. For what may crash or never end, and would cost more to start as a program than to do. The copy
// leads a group of its own, has default signal handling and all descriptors, writes out nothing that this process has
// buffered, and ends with the thread that has started it. Only while this process has no other thread.
[[nodiscard]] Result<pid_t> spawnCopy(const std::function<int()>& work);

} // namespace tavrix
