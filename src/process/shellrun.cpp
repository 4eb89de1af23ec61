// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/shellrun.h"

namespace tavrix
{

std::optional<CapturedRun> runShell(const QString& command, const QString& directory)
{
    if (command.isNull()) {
        return std::nullopt;
    }
    ChildSetup setup;
    setup.program = QStringLiteral("/bin/sh");
    // "&>" sends both streams to a file in bash only: another shell would put the command into the background and leave
    // the file empty.
    if (command.contains(QLatin1String("&>"))) {
        setup.program = QStringLiteral("/bin/bash");
        setup.name = QStringLiteral("sh");
    }
    setup.arguments = {QStringLiteral("-c"), command};
    setup.workingFolder = directory;
    setup.toolLocale = true;
    return runCaptured(setup);
}

} // namespace tavrix
