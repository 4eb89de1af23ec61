// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Short synchronous runs. Each blocks until the child has exited, drains its output meanwhile, runs no event loop,
// gives the child the null device as standard input and LC_CTYPE=en_US.UTF-8. A non-zero exit status is not examined.

#include <QString>
#include <QStringList>

namespace tavrix
{

// "/bin/sh -c command" (bash in its sh mode when the text holds "&>"). "" when the output is not UTF-8, nothing when it
// is empty. A working folder that does not exist gives nothing.
[[nodiscard]] QString taskWithStr(const QString& command, const QString& directory = QString());
// The same without a working folder; one final "\n" removed; nothing when undecodable, "" when empty.
[[nodiscard]] QString taskWithStrBasic(const QString& command);
// Element 0 names the tool (a path, or a resource), the rest its arguments; no shell. Nothing when the tool cannot be
// found or the capture file "<temporary folder>taskData.txt" cannot be used. An older, longer capture keeps its tail.
[[nodiscard]] QString taskArray(const QStringList& arguments, bool stderrToo);
// Path of the ffmpeg tool: resources, resources/tools, the support folder; "" when none has it.
[[nodiscard]] QString ffmpegPathStr();

} // namespace tavrix
