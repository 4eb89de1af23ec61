// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What is known of one file, gathered by the inspector and put into words or JSON by others.

#include "media/sourcefacts.h"
#include "probe/cameraclip.h"
#include "probe/mediainforecord.h"
#include "probe/recordingname.h"

#include <QList>
#include <QString>

#include <optional>

namespace tavrix
{

enum class RecorderKind { None, Avchd, Eyetv };

// Where a recorder has put the file.
struct RecorderFacts {
    RecorderKind kind = RecorderKind::None;
    QString folder;    // of the card or the recording; nothing without a recorder
    QString name;      // the clip's number or the recording's name; nothing without a recorder
    float seconds = 0; // length that the recorder tells; 0 when it does not
};

// Start of one sound stream against the picture's, in milliseconds: positive when the sound begins later.
struct SoundOffset {
    std::optional<int> byTimeStamps;  // of the packets, as ffmpeg reads them
    std::optional<int> byTrackRanges; // of the tracks, as QuickTime places them
};

// What one output format would make of the clip.
struct FormatPreview {
    int out = 0;
    int width = 0; // pixels of the stored picture; 0 when unknown
    int height = 0;
    double rate = 0;   // pictures a second; 0 when unknown
    qint64 bytes = -1; // about; -1 when unknown
    QString name;      // of the output file
};

// What takes longer than a moment, asked for by itself.
struct ThoroughFacts {
    bool soundDecodes = false;  // the first five seconds, without the complaints that spoil an encode
    bool needsVsync = false;    // its time stamps jump and repeat
    float countedRate = 0;      // pictures a second, counted; 0 when that fails
    int elementarySeconds = -1; // length of an elementary MPEG stream; -1 for any other file
};

struct Inspection {
    QString path;          // as it was given
    qint64 bytes = -1;     // -1 when unknown
    QString problem;       // why nothing more is known, for people; nothing when the file is described
    QString toolWords;     // what ffmpeg says about the problem; nothing when it says nothing
    MediaInfoRecord infos; // ffmpeg's description, with the offsets above 30 ms
    MediaInfoRecord movie; // the tracks' description; empty when the file is no movie
    std::optional<media::SourceFacts> shown; // what a player shows
    QString interlacing;                     // code of the table "fields"; nothing when unknown
    QList<SoundOffset> offsets;              // one for each sound stream of ffmpeg's description
    RecorderFacts recorder;
    RecordingName recording; // its date, and the base name that the outputs get from it
    ClipVerdict verdict;     // whether the program takes it
    QList<FormatPreview> formats;
    std::optional<ThoroughFacts> thorough;

    [[nodiscard]] bool described() const { return problem.isNull(); }
};

// What a player shows of one stream of ffmpeg's description; null when that is not known. The number counts streams of
// that kind from 0.
[[nodiscard]] const media::StreamFacts* shownStream(const Inspection& inspection, media::Kind kind, int number);
// A value of ffmpeg's description, else of the movie's.
[[nodiscard]] QVariant knownValue(const Inspection& inspection, char kind, int number, const char* name);
// Number of streams of the kind 'v' or 'a' in ffmpeg's description.
[[nodiscard]] int streamCount(const MediaInfoRecord& infos, char kind);

} // namespace tavrix
