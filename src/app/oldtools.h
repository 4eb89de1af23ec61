// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

// Tool processes that an earlier run of the program has left behind.
namespace tavrix
{

// In the environment of every tool that the program starts: the program's process id.
inline constexpr const char* ownerVariable = "TAVRIX_PROGRAM";

// Shell line that lists the ids of processes which carry the tool's path, for whoever looks by hand; nothing for a
// tools folder that cannot stand between double quotes.
[[nodiscard]] QString leftOverToolCommand(const QString& toolsFolder, const QString& tool);
// Ids of processes of this user and home that really run that tool of the resource folder and were started by a run of
// the program that has ended; never this process or its parent.
[[nodiscard]] QList<int> leftOverToolPids(const QString& tool);
// A process that has gone meanwhile is no failure; any other one is logged.
void killLeftOverTool(int pid);

} // namespace tavrix
