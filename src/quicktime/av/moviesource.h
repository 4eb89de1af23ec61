// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// An opened file as the movie adapter sees it: the facts of the FFmpeg libraries and, for QuickTime files, its atoms.

#include "media/edittimeline.h"
#include "quicktime/av/avinput.h"
#include "quicktime/model/medialibrary.h"
#include "sys/fileidentity.h"

#include <map>

namespace tavrix
{

// No value when there is no such regular file.
[[nodiscard]] std::optional<FileIdentity> fileIdentity(const QString& path);

struct SourceTrack {
    TrackAtoms atoms; // of a QuickTime file, or made up from the stream
    std::optional<StreamFacts> stream;
    bool fromAtoms = false;
};

class MovieSource
{
public:
    // Null when the file cannot be read as a movie.
    [[nodiscard]] static std::shared_ptr<MovieSource> open(const QString& path);

    QString path;
    FileIdentity identity;
    FileFacts facts;
    MovieAtoms atoms; // found is false for other containers
    qint32 timeScale = 600;
    qint64 duration = 0; // in timeScale
    std::vector<SourceTrack> tracks;

    // Movie times at which the track's samples come up under the timeline.
    [[nodiscard]] std::vector<std::int64_t> sampleTimes(std::size_t track, const EditTimeline& timeline);

private:
    void takeMovieAtoms();
    void takeTracks();
    [[nodiscard]] const SampleTable& sampleTable(std::size_t track);
    void scanPackets();

    std::map<std::size_t, SampleTable> tables_;
    bool scanned_ = false;
};

} // namespace tavrix
