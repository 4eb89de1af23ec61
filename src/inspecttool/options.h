// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The command line of tavrix-inspect.

#include "inspect/partexport.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix
{

struct InspectOptions {
    enum class Mode { Describe, Export, System, Help, Version, Wrong };
    Mode mode = Mode::Describe;
    bool json = false;
    bool thorough = false;
    bool fullPaths = false; // of the system report
    QStringList files;
    // Of an export.
    PartForm form = PartForm::Wave;
    QString output; // nothing chooses it by the file's name
    std::optional<ClipPart> part;
    QSize size;
    bool replaces = false;
    bool forPrograms = false; // progress and verdict go to the error stream, line by line
    QString error;            // of a wrong command line, for people
};

// The words without the program's name. "--" ends the options.
[[nodiscard]] InspectOptions parseInspectOptions(const QStringList& words);

} // namespace tavrix
