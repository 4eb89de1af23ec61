#pragma once

#include <QString>
#include <QStringList>

namespace tavrix
{

enum class ExistingPolicy { Default, Replace, Keep, Ask };

// What the command line asks for.
struct ConsoleOptions {
    enum class Mode { Convert, System, Help, Version, Wrong };
    Mode mode = Mode::Convert;
    QString error;   // what is wrong, for Mode::Wrong
    int format = -1; // output format 0 to 5, -1 = the one of the preferences
    QString output;  // destination folder; nothing = the default one
    ExistingPolicy existing = ExistingPolicy::Default;
    bool json = false;
    QStringList sources; // as given
};

// Words of the command line without the program's name. "--" ends the options.
[[nodiscard]] ConsoleOptions parseConsoleOptions(const QStringList& words);
[[nodiscard]] QString consoleUsage();

} // namespace tavrix
