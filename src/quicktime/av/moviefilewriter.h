// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Writing of the new movie file that a plan describes.

#include "media/movierewriter.h"
#include "sys/result.h"
#include "sys/safeoutput.h"

#include <QString>

namespace tavrix
{

struct MovieFileJob {
    QString sourcePath; // where the plan's stretches lie
    QString destinationPath;
    const RewritePlan* plan = nullptr;
    bool headerFirst = false; // the movie header stands in front of the media data
};

// The file appears under its name only when it is complete; what was there before stays when that fails.
[[nodiscard]] Result<void, QString> writeMovieFile(const MovieFileJob& job);
// Gives the complete file its name.
[[nodiscard]] Result<void, QString> published(SafeOutput& file);
// True when the volume of the file-to-be has room for so many bytes.
[[nodiscard]] bool hasRoomFor(const QString& destinationPath, std::uint64_t bytes);

} // namespace tavrix
