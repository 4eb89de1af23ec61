// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A child run to its end, with what it has written.

#include "process/childprocess.h"

#include <functional>
#include <optional>

namespace tavrix
{

struct CapturedRun {
    QByteArray output;
    int pid = 0;
    int status = 0;
    Descriptor rest; // read end of the output pipe, which background jobs of the child may still hold
};

// Runs a child and collects its standard output, and its error stream too when asked for. Reads while it waits, so that
// any amount fits, and stops when the child has ended and the pipe holds nothing more that was written before: a
// background job that keeps the pipe open does not delay it. No event loop runs. `started` gets the process id early.
// No value (and a log line) when the program could not be executed or, once started, not be watched: it is then killed.
[[nodiscard]] std::optional<CapturedRun> runCaptured(ChildSetup setup, bool errorToo = false,
                                                     const std::function<void(int)>& started = {});

// From now on a captured child is killed, and gives no value, when it has neither said nor done anything for that long
// (see SilenceWatch): the whole program waits for it. 0, as at first, waits for ever.
void setCapturedSilence(qint64 milliseconds);

} // namespace tavrix
