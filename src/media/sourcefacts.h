// SPDX-License-Identifier: GPL-3.0-or-later
// What a player shows of a clip, as far as its header, its index and its first packets tell.
#pragma once

#include "media/turning.h"
#include "sys/result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::media
{

class MediaInput;

enum class Kind { Picture, Sound, Other };

// 0/1 where nothing is known.
struct Ratio {
    int num = 0;
    int den = 1;

    [[nodiscard]] bool known() const { return num > 0 && den > 0; }
    [[nodiscard]] double value() const { return known() ? double(num) / double(den) : 0; }
    bool operator==(const Ratio&) const = default;
};

// What a movie's edit list does to a track. Times are seconds.
struct Edits {
    bool present = false;         // hides, delays or orders anything at all
    int pieces = 1;               // stretches of media shown one after the other; empty ones not counted
    double emptyStart = 0;        // nothing is shown before the first piece
    bool hidesStart = false;      // decoded, not shown: what stands before the first piece
    bool endsBeforeMedia = false; // whole pictures or packets follow the end of the last piece
};

// How the numbers of a picture stand for colours, in libavutil's words ("bt709"); "" where the clip does not say.
struct Colour {
    std::string primaries;
    std::string transfer;
    std::string matrix;
    bool operator==(const Colour&) const = default;
};

struct StreamFacts {
    int index = 0;
    int id = 0; // the PID of a transport stream, the number of a movie's track
    Kind kind = Kind::Other;
    std::string codec;      // libavcodec's name ("h264", "mjpeg", "ac3"); "none" when unknown
    bool byDefault = false; // marked as the one to show
    bool external = false;  // its media are in another file, which is not followed
    bool encrypted = false;

    // What is shown, on the clip's timeline: it begins at 0 in movies, with the first stream elsewhere.
    std::optional<double> start;                // seconds
    std::optional<double> duration;             // seconds
    std::optional<std::int64_t> packets;        // of the index, hidden ones included; nothing without an index
    std::optional<std::int64_t> shownPackets;   // of the index, without those that the edit list hides
    std::optional<std::int64_t> missingPackets; // of the index, those that lie beyond the end of the file
    std::optional<double> announced; // seconds, by a field of an AVI header that recorders may have written wrong
    Edits edits;

    // Of pictures.
    int width = 0; // coded
    int height = 0;
    Ratio pixelAspect;
    Turning turning;
    Ratio meanRate;    // pictures per second over the whole clip
    Ratio nominalRate; // what ffmpeg prints as tbr: the lowest that fits all times
    bool fullRange = false;
    Colour colour;
    bool interlaced = false; // as told by container or header

    // Of sound.
    int channels = 0;
    int sampleRate = 0;
    std::string layout; // "stereo", "5.1"; "" when unknown
};

struct SourceFacts {
    std::string container;            // libavformat's names ("mpegts", "mov,mp4,m4a,3gp,3g2,mj2", "avi")
    bool isMovie = false;             // QuickTime and its family
    double origin = 0;                // seconds of the file's own clock at which the timeline begins
    std::optional<double> duration;   // seconds, of the longest stream
    std::int64_t bytes = 0;           // of the file
    bool fragmented = false;          // a movie in pieces with an index each: what the index says is but a beginning
    bool cutOff = false;              // a fragmented movie whose last piece reaches beyond the end of the file
    std::vector<StreamFacts> streams; // cover pictures left out

    // The stream that ffmpeg takes when nobody chooses; nothing when there is none of the kind.
    [[nodiscard]] const StreamFacts* chosen(Kind kind) const;
};

// Reads the facts of a local regular file; a play list, a device or an address under the name is refused. It takes at
// most `seconds` (0: no limit). The reason of a failure is without the path.
[[nodiscard]] Result<SourceFacts> readSourceFacts(const std::string& path, int seconds = 60);
// The same of an input that is open; its path is read again for what libavformat does not tell.
[[nodiscard]] SourceFacts sourceFactsOf(const MediaInput& input, const std::string& path);

} // namespace tavrix::media
