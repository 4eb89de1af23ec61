// One child process whose error stream is read by this one.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tavrix
{

struct ChildRequest {
    std::string program;                                          // absolute path
    std::vector<std::string> arguments;                           // argv, the name first
    std::vector<std::pair<std::string, std::string>> environment; // set on top of the own one
    std::vector<std::string> removedVariables;
    std::vector<int> inheritedDescriptors; // stay open in the child, under their numbers
    bool readsStandardInput = false;       // else it gets the null device
};

// How a child ended: `code` is the exit status, or the number of the signal that ended it.
struct ChildEnd {
    bool bySignal = false;
    int code = 0;
};

// Runs the child to its end and hands every piece of its error stream to `receiver` while it runs; returns after the
// stream is drained and the child reaped. The child is in this process's group, has default signal handling, and is
// killed by the system when this process dies. While it runs, SIGINT, SIGTERM, SIGHUP and SIGQUIT kill it and are kept
// for `interruptingSignal`. Nothing, with the reason in `error`, when it cannot be started.
[[nodiscard]] std::optional<ChildEnd>
runChild(const ChildRequest& request, const std::function<void(std::string_view)>& receiver, std::string& error);

// Kills the child of the current `runChild`, from within its receiver.
void killChild();

// The signal that asked this process to end; 0 when there was none.
[[nodiscard]] int interruptingSignal();

// Installs the handlers that `interruptingSignal` tells of. Without it a signal ends the process as usual.
void watchForInterruption();

// Ends this process by that signal, so that its parent sees what happened.
[[noreturn]] void endBySignal(int signal);

} // namespace tavrix
