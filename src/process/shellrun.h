// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Command texts run by the shell.

#include "process/capturedrun.h"

namespace tavrix
{

// Runs the command text by the system's shell. No value when the command is nothing, the working folder does not exist
// or the shell cannot be started.
[[nodiscard]] std::optional<CapturedRun> runShell(const QString& command, const QString& directory = QString());

} // namespace tavrix
