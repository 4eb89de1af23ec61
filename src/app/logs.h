// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The two log files of a run.

#include <QString>

namespace tavrix
{

// Full paths, whether or not the files exist: every diagnostic line, and what became of each row.
[[nodiscard]] QString detailsLogPath();
[[nodiscard]] QString logResumePathStr();
// Makes sure that the summary log exists (with its start line), then appends the text unless it is nothing or "".
void logResume(const QString& text);
// Reopens standard output and standard error on the file, once per process; always leaves working streams behind.
void redirectLogs2File(const QString& path);
// Makes the log folder (mode 0700) and moves the logs of the run before to their "Previous-" names.
void rotateLogs();

} // namespace tavrix
