// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One child process whose error stream is read by this one.

#include "sys/childend.h"
#include "sys/result.h"
#include "sys/spawn.h"

#include <functional>
#include <string_view>

namespace tavrix
{

// Runs the child to its end and hands every piece of its error stream to `receiver` while it runs; returns after the
// stream is drained and the child reaped. While it runs, SIGINT, SIGTERM, SIGHUP and SIGQUIT kill it and are kept for
// `interruptingSignal`. The failure says why it cannot be started.
[[nodiscard]] Result<ChildEnd> runChild(SpawnRequest request, const std::function<void(std::string_view)>& receiver);

// Kills the child of the current `runChild`, from within its receiver.
void killChild();

// The signal that asked this process to end; 0 when there was none.
[[nodiscard]] int interruptingSignal();

// Installs the handlers that `interruptingSignal` tells of. Without it a signal ends the process as usual.
void watchForInterruption();

// Ends this process by that signal, so that its parent sees what happened.
[[noreturn]] void endBySignal(int signal);

} // namespace tavrix
