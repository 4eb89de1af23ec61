#pragma once

#include <QString>

// The two log files of a run.
namespace tavrix
{

[[nodiscard]] QString detailsLogPath();
[[nodiscard]] QString logResumePathStr();
// Makes sure that the summary log exists (with its start line), then appends the text unless it is nothing or "".
void logResume(const QString& text);
// Reopens standard output and standard error on the file, once per process; always leaves working streams behind.
void redirectLogs2File(const QString& path);
// Makes the log folder (mode 0700) and moves the logs of the run before to their "Previous-" names.
void rotateLogs();

// "mailto:" address of a message to the maker; the body is added as it is.
[[nodiscard]] QString mailAddress(const QString& mailbox, const QString& versionField, int revision,
                                  const QString& body);

} // namespace tavrix
