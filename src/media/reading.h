// SPDX-License-Identifier: GPL-3.0-or-later
// A whole clip read once, packet by packet: what is there, as against what its header promises. Nothing is decoded.
#pragma once

#include "media/mediainput.h"
#include "media/sourcefacts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::media
{

// A number of places, and when the first of them is shown, in seconds of the clip's timeline.
struct Flaws {
    std::int64_t count = 0;
    std::optional<double> first;

    void add(std::optional<double> time);
};

// What was read of one stream. Times are seconds of the clip's timeline; where its clock steps, as at the join of two
// recordings, the later part is put behind the earlier one, as ffmpeg does.
struct StreamReading {
    StreamFacts facts;
    std::int64_t packets = 0;  // that could be read and hold something; hidden ones are not counted
    std::int64_t hidden = 0;   // by the edit list
    std::int64_t pictures = 0; // as packets, but two fields in packets of their own are one picture
    // Stored or shown before the first picture that can be decoded by itself, and for that reason not always decodable.
    std::int64_t packetsBeforeKey = 0;
    std::int64_t picturesBeforeKey = 0;
    double first = 0;
    double firstKey = 0;
    double end = 0;        // of the last packet's duration
    double interval = 0;   // between neighbours, as most of them have it; 0 with less than two packets
    double longestGap = 0; // between neighbours
    Flaws broken;          // packets that are cut, marked as damaged, or no packets of their codec
    // Where it would end by what the file's header promises, if the file ends before that; nothing when all that was
    // promised is there, or nothing was.
    std::optional<double> promisedEnd;
};

// What the container itself tells of damage.
struct ContainerFlaws {
    bool cutOff = false;               // the file ends before what its header promises
    Flaws lost;                        // places where packets are missing, out of order, or no packets at all
    std::optional<double> promisedEnd; // where the pictures would end by the header; nothing when it promises nothing
    std::optional<std::int64_t> promisedPictures; // packets, hidden ones included
};

struct Reading {
    SourceFacts facts;
    std::vector<StreamReading> streams; // of pictures and sound
    ContainerFlaws flaws;
    std::int64_t joins = 0; // steps of the clock
    std::string failure;    // why it could not be read to its end; "" when it could

    // What was read of the stream that ffmpeg takes; nothing when there is none of the kind.
    [[nodiscard]] const StreamReading* chosen(Kind kind) const;
};

// A part of a clip, in seconds of its timeline.
struct Span {
    double from = 0;
    double to = 0; // excluded

    // Whether a picture shown from that time on belongs to the part; people tell times in thousandths.
    [[nodiscard]] bool holds(double time) const
    {
        constexpr double slack = 0.0006;
        return time >= from - slack && time < to - slack;
    }
};

struct ReadRequest {
    OpenRequest open;
    // Only what is shown in this part counts, and damage only where it may lie there; everything without. A picture
    // belongs to it that begins there.
    std::optional<Span> part = std::nullopt;
    int secondsPerPacket = 60; // a packet that takes longer ends the reading, as a failure; 0: no limit
};

// The reason of a failure is that of the opening, without the path.
[[nodiscard]] Result<Reading> readClip(const ReadRequest& request);

} // namespace tavrix::media
