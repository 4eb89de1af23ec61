// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/cliptime.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix
{

// Skip keeps an output that exists like Keep, and counts its row as done with.
enum class ExistingPolicy { Default, Replace, Keep, Skip, Ask };

// How much is told in words. JSON tells everything in any case.
enum class Verbosity { Quiet, Normal, Verbose };

// What the command line asks for.
struct ConsoleOptions {
    enum class Mode { Convert, System, Help, Version, Wrong };
    Mode mode = Mode::Convert;
    QString error;   // what is wrong, for Mode::Wrong
    int format = -1; // output format, -1 = the one of the preferences
    QString output;  // destination folder; nothing = the default one
    ExistingPolicy existing = ExistingPolicy::Default;
    bool json = false;
    bool dryRun = false; // only analyse, and list what would be made
    Verbosity verbosity = Verbosity::Normal;
    std::optional<ClipPart> part; // of each clip; nothing: all of it
    QStringList sources;          // as given
};

// Words of the command line without the program's name. "--" ends the options; letters can stand together ("-qf3").
[[nodiscard]] ConsoleOptions parseConsoleOptions(const QStringList& words);
[[nodiscard]] QString consoleUsage();

} // namespace tavrix
