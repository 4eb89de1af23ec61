// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/piecetimes.h"

#include "media/avversions.h"
#include "media/edittimeline.h"
#include "media/sampletables.h"
#include "sys/descriptor.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

extern "C" {
#include <libavformat/avformat.h>
}

namespace tavrix::movencoder
{

namespace
{

constexpr int fewestPieces = 2;

// Media times of the pictures, ascending.
std::vector<std::int64_t> mediaTimes(const SampleTable& table)
{
    std::vector<std::int64_t> times;
    std::int64_t decoded = 0;
    for (const Sample& sample : table.samples) {
        times.push_back(decoded + sample.compositionOffset);
        decoded += sample.duration;
    }
    std::ranges::sort(times);
    return times;
}

std::vector<std::int64_t> shownTimes(const TrackAtoms& track, const SampleTable& table, std::uint32_t movieScale)
{
    const std::vector<std::int64_t> media = mediaTimes(table);
    std::vector<std::int64_t> shown;
    std::int64_t position = 0; // movie scale
    for (const EditEntry& piece : track.edits) {
        const auto length = static_cast<std::int64_t>(piece.duration);
        const std::int64_t start = rescaled(position, track.mediaTimeScale, movieScale);
        const std::int64_t end = piece.mediaTime + rescaled(length, track.mediaTimeScale, movieScale);
        auto picture = std::ranges::lower_bound(media, piece.mediaTime);
        for (; piece.mediaTime >= 0 && picture != media.end() && *picture < end; ++picture) {
            shown.push_back(start + *picture - piece.mediaTime);
        }
        position += length;
    }
    return shown;
}

std::size_t shownByLibrary(AVStream& stream)
{
    std::size_t count = 0;
    for (int number = 0; number < media::indexSize(stream); ++number) {
        count += (media::indexEntry(stream, number)->flags & AVINDEX_DISCARD_FRAME) == 0 ? 1 : 0;
    }
    return count;
}

} // namespace

std::vector<std::int64_t> pieceTimes(const std::string& path, AVStream& stream)
{
    const Descriptor file = openFile(path.c_str(), O_RDONLY);
    struct stat info = {};
    if (!file.isOpen() || fstat(file.get(), &info) != 0) {
        return {};
    }
    const auto size = static_cast<std::uint64_t>(info.st_size);
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), size);
    const auto track = std::ranges::find(movie.tracks, static_cast<std::uint32_t>(stream.id), &TrackAtoms::id);
    if (track == movie.tracks.end() || movie.timeScale == 0 || movie.fragmented) {
        return {};
    }
    const auto pieces = std::ranges::count_if(track->edits, [](const EditEntry& edit) { return edit.mediaTime >= 0; });
    const bool sameBase = stream.time_base.num == 1 && std::int64_t(stream.time_base.den) == track->mediaTimeScale;
    if (pieces < fewestPieces || !sameBase) {
        return {};
    }
    const auto table = readSampleTable(*track, size);
    std::vector<std::int64_t> times = table ? shownTimes(*track, *table, movie.timeScale) : std::vector<std::int64_t>();
    return times.size() == shownByLibrary(stream) ? times : std::vector<std::int64_t>();
}

} // namespace tavrix::movencoder
