// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/copyedits.h"

#include "media/edittimeline.h"
#include "media/sampletables.h"
#include "sys/descriptor.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <limits>

namespace tavrix::front
{

namespace
{

// A movie's times are thousandths of a second in ffmpeg's outputs: too coarse for an edit that ends between pictures.
constexpr std::uint32_t coarsestScale = 1000;

bool standsAlone(const std::string& codec)
{
    return codec == "mjpeg" || codec == "dvvideo" || codec == "rawvideo" || codec == "prores" || codec == "aic";
}

std::optional<SampleTable> picturesOf(const TrackAtoms& track, std::uint64_t fileSize)
{
    auto table = readSampleTable(track, fileSize);
    return table && !table->samples.empty() ? std::move(table) : std::nullopt;
}

// Whether pictures follow the end of the list's only piece.
bool hidesAnEnd(const TrackAtoms& track, const SampleTable& table, std::uint32_t movieScale)
{
    const auto piece = std::ranges::find_if(track.edits, [](const EditEntry& entry) { return entry.mediaTime >= 0; });
    if (piece == track.edits.end() || piece->duration == 0) {
        return false;
    }
    const std::int64_t end =
        piece->mediaTime + rescaled(static_cast<std::int64_t>(piece->duration), track.mediaTimeScale, movieScale);
    std::int64_t time = 0;
    return std::ranges::any_of(table.samples, [&](const Sample& sample) {
        const std::int64_t shown = time + sample.compositionOffset;
        time += sample.duration;
        return shown >= end;
    });
}

double endOf(const media::StreamFacts& stream)
{
    return stream.start.value_or(0) + stream.duration.value_or(0);
}

// Time at the start in which no stream shows anything is left out of every conversion.
void removeCommonStart(CopyEdits& edits, const media::SourceFacts& facts)
{
    double first = std::numeric_limits<double>::max();
    for (const media::StreamFacts& stream : facts.streams) {
        first = std::min(first, stream.start.value_or(0));
    }
    if (facts.streams.empty() || first <= 0 || edits.entries.empty() || edits.entries.front().mediaTime >= 0) {
        return;
    }
    const auto common = static_cast<std::uint64_t>(std::llround(first * edits.movieScale));
    EditEntry& empty = edits.entries.front();
    empty.duration -= std::min(empty.duration, common);
    edits.shownSeconds -= first;
    if (empty.duration == 0) {
        edits.entries.erase(edits.entries.begin());
    }
}

const TrackAtoms* pictureTrack(const MovieAtoms& movie)
{
    const auto found = std::ranges::find(movie.tracks, "vide", &TrackAtoms::mediaType);
    return found == movie.tracks.end() ? nullptr : &*found;
}

std::int64_t rescaledTime(std::int64_t value, std::uint32_t to, std::uint32_t from)
{
    return to == from ? value : rescaled(value, to, from);
}

// The copy's own list hides what stands before the first shown picture; only its end is wrong.
std::vector<EditEntry> withShownEnd(const CopyEdits& edits, const MovieAtoms& copy, const TrackAtoms& track,
                                    std::int64_t firstPicture, std::uint32_t scale)
{
    std::vector<EditEntry> entries = track.edits;
    if (entries.empty()) {
        EditEntry whole;
        whole.mediaTime = firstPicture;
        entries.push_back(whole);
    }
    for (EditEntry& entry : entries) {
        const bool shows = entry.mediaTime >= 0;
        const std::uint64_t shown = edits.entries.back().duration * (scale / edits.movieScale);
        entry.duration =
            shows ? shown : std::uint64_t(rescaledTime(std::int64_t(entry.duration), scale, copy.timeScale));
    }
    return entries;
}

std::vector<EditEntry> ownList(const CopyEdits& edits, const TrackAtoms& track, std::int64_t firstPicture,
                               std::uint32_t scale)
{
    std::vector<EditEntry> entries = edits.entries;
    for (EditEntry& entry : entries) {
        entry.duration *= scale / edits.movieScale;
        if (entry.mediaTime >= 0) {
            const std::int64_t sinceFirst = entry.mediaTime - edits.firstPicture;
            entry.mediaTime = std::max<std::int64_t>(
                0, rescaledTime(sinceFirst, track.mediaTimeScale, edits.mediaScale) + firstPicture);
        }
    }
    return entries;
}

} // namespace

std::optional<CopyEdits> copyEdits(const std::string& path, const media::SourceFacts& facts, const OutputJob& job)
{
    const media::StreamFacts* const picture = facts.chosen(media::Kind::Picture);
    const bool copies = facts.isMovie && job.isMovie() && job.picture == Treatment::Copied && picture != nullptr;
    if (!copies || standsAlone(picture->codec) || !picture->edits.present) {
        return std::nullopt;
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        return std::nullopt;
    }
    const auto size = static_cast<std::uint64_t>(facts.bytes);
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), size);
    const auto track = std::ranges::find(movie.tracks, std::uint32_t(picture->id), &TrackAtoms::id);
    if (track == movie.tracks.end() || track->edits.empty() || movie.timeScale == 0 || track->mediaTimeScale == 0) {
        return std::nullopt;
    }
    const auto pictures = picturesOf(*track, size);
    const bool oneToItsEnd = picture->edits.pieces < 2 && pictures && !hidesAnEnd(*track, *pictures, movie.timeScale);
    if (!pictures || oneToItsEnd) {
        return std::nullopt;
    }
    CopyEdits edits;
    edits.way = picture->edits.pieces > 1 ? CopyEdits::Way::OwnList : CopyEdits::Way::CutEnd;
    edits.movieScale = movie.timeScale;
    edits.mediaScale = track->mediaTimeScale;
    edits.firstPicture = pictures->samples.front().compositionOffset;
    edits.entries = track->edits;
    edits.pictureStream = picture->index;
    edits.shownSeconds = endOf(*picture);
    if (const media::StreamFacts* const sound = facts.chosen(media::Kind::Sound)) {
        edits.soundStream = sound->index;
        edits.shownSeconds = std::max(edits.shownSeconds, endOf(*sound));
    }
    removeCommonStart(edits, facts);
    return edits;
}

Result<HeaderChange> editsOfCopy(const CopyEdits& edits, const MovieAtoms& copy, std::uint64_t fileSize)
{
    const TrackAtoms* const track = pictureTrack(copy);
    const auto pictures = track == nullptr ? std::nullopt : picturesOf(*track, fileSize);
    if (!pictures) {
        return Failure{"the copy's header cannot be read"};
    }
    const std::int64_t firstPicture = pictures->samples.front().compositionOffset;
    // A multiple of the source's scale holds the source's times without rounding.
    const std::uint32_t factor = (coarsestScale + edits.movieScale - 1) / edits.movieScale;
    HeaderChange change;
    change.movieScale = edits.movieScale * std::max<std::uint32_t>(factor, 1);
    TrackEdits own;
    own.track = static_cast<std::size_t>(track - copy.tracks.data());
    own.entries = edits.way == CopyEdits::Way::CutEnd
                      ? withShownEnd(edits, copy, *track, firstPicture, change.movieScale)
                      : ownList(edits, *track, firstPicture, change.movieScale);
    change.edits.push_back(std::move(own));
    return change;
}

} // namespace tavrix::front
