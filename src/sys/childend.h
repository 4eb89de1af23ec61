// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How a child process ends, and waiting for it.

#include "sys/descriptor.h"
#include "sys/result.h"
#include "sys/spawn.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>

namespace tavrix
{

// `code` is the exit status, or the number of the signal that ended the child.
struct ChildEnd {
    bool bySignal = false;
    int code = 0;

    [[nodiscard]] bool operator==(const ChildEnd&) const = default;
};

// "ended by signal 11 (Segmentation fault)", "ended with status 1".
[[nodiscard]] std::string endText(const ChildEnd& end);

enum class ExitWatch { Kernel, Thread };

// Descriptor that becomes readable when the child has ended. A thread stands in where the kernel offers no process
// descriptors. Not open, with errno, when neither can be had.
[[nodiscard]] Descriptor openExitDescriptor(pid_t pid, ExitWatch watch = ExitWatch::Kernel);

// Reaps the child if it has ended; nothing while it runs. The failure says why its end cannot be told: it is not to be
// asked for again.
[[nodiscard]] Result<std::optional<ChildEnd>> reapIfEnded(pid_t pid);

// Runs a child, in a group of its own, to its end. It fails when the child cannot be started, or has not ended in time:
// its group is killed then. No event loop runs meanwhile.
[[nodiscard]] Result<ChildEnd> runToEnd(SpawnRequest request, std::chrono::milliseconds limit);

} // namespace tavrix
