// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A stretch of work that no signal handler interrupts.

#include <csignal>

namespace tavrix
{

// Keeps every signal from this thread as long as it lives; what comes meanwhile is delivered at its end.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t before_ = {};
};

} // namespace tavrix
