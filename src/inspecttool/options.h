#pragma once

// The command line of tavrix-inspect.

#include <QString>
#include <QStringList>

namespace tavrix
{

struct InspectOptions {
    enum class Mode { Describe, Export, System, Help, Version, Wrong };
    Mode mode = Mode::Describe;
    bool json = false;
    bool thorough = false;
    bool fullPaths = false; // of the system report
    QStringList files;
    QString output; // of an export; nothing chooses it by the file's name
    QString error;  // of a wrong command line, for people
};

// The words without the program's name. "--" ends the options.
[[nodiscard]] InspectOptions parseInspectOptions(const QStringList& words);

} // namespace tavrix
