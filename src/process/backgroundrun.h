// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A tool run in the background and watched by its process id, with its progress read from a file.

#include <QObject>
#include <QStringList>
#include <QVariant>

#include <functional>

namespace tavrix
{

struct BackgroundRunRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

// Receives the progress range and values of a watched run; every function may be empty.
struct BackgroundRunIndicator {
    std::function<void(double minimum, double maximum)> setRange;
    std::function<void(double value)> setValue;
};

// Shell command of the run: elements joined with blanks, unsafe ones quoted, without the redirection.
[[nodiscard]] QString backgroundRunCommand(const QStringList& arguments);
// Name that the run's process is looked for by.
[[nodiscard]] QString backgroundRunName(const QString& command);
// Process id from the answer of the process listing; 0 when it names none started after the shell.
[[nodiscard]] int backgroundRunPid(const QString& psAnswer, int shellPid);
// Seconds of the last line of the progress text that holds "time="; -1 when there is none.
[[nodiscard]] double backgroundRunSeconds(const QString& progressText);

// Runs the tool, polling once a second until it has ended. The window, button rectangle and spare argument only matter
// to the log: no button is shown.
void taskcontrollerBasic(const QStringList& arguments, QObject* window, const BackgroundRunRect& buttonRect,
                         const QVariant& spare, const BackgroundRunIndicator& indicator, int durationSeconds);

} // namespace tavrix
