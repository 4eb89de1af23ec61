// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/avmedialibrary.h"

#include "base/text/paths.h"
#include "quicktime/av/avmovie.h"

namespace tavrix
{

// Everything is known when a movie is open, so asynchronous opening is never needed.
std::shared_ptr<Movie> AvMediaLibrary::movieWithFile(const QString& path, bool /*asyncOK*/)
{
    const std::shared_ptr<MovieSource> source = MovieSource::open(stringByExpandingTildeInPath(path));
    return source == nullptr ? nullptr : std::make_shared<AvMovie>(source);
}

} // namespace tavrix
