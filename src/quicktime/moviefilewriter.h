#pragma once

#include "media/movierewriter.h"

#include <QString>

namespace tavrix
{

struct MovieFileJob {
    QString sourcePath; // where the plan's stretches lie
    QString destinationPath;
    const RewritePlan* plan = nullptr;
    bool headerFirst = false; // the movie header stands in front of the media data
};

// Writes the file under a temporary name and gives it its own only when it is complete. False leaves what was there
// before; *reason says why.
[[nodiscard]] bool writeMovieFile(const MovieFileJob& job, QString* reason);
// True when the volume of the file-to-be has room for so many bytes.
[[nodiscard]] bool hasRoomFor(const QString& destinationPath, std::uint64_t bytes);

} // namespace tavrix
