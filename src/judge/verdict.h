// SPDX-License-Identifier: GPL-3.0-or-later
// What became of an output, in terms that a program can act on and a person can read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::judge
{

enum class Outcome {
    Whole,      // holds all that a player shows of the source
    Incomplete, // holds all that can be read of a source that is damaged or ends early
    Failed,     // anything else
};

// Which fields of a finding say something is written behind each.
enum class Cause {
    // Of the source. With one of these an output is incomplete at best.
    EndedEarly,      // its pictures: `seconds` of `ofSeconds` could be read
    SoundEndedEarly, // likewise
    CutOff,          // it ends in the middle of a packet; how much is missing it does not say
    DamagedPictures, // `count` of them, `from` on
    DamagedSound,    // `count` packets, `from` on
    LostPackets,     // at `count` places, `from` on
    ReadError,       // `text`

    // Of the output. With one of these it has failed.
    NotReadable,       // `text`: why it cannot be opened or read
    NoPicture,         // though the source has some
    NoSound,           // likewise
    ShorterPicture,    // `seconds` of `ofSeconds` that can be read of the source
    ShorterSound,      // likewise
    LongerPicture,     // `seconds` where there should be `ofSeconds`
    PictureCount,      // `count` where there should be `ofCount`
    BrokenPackets,     // `count` of its packets cannot be read or are none, `from` on
    EndsNotDecodable,  // its first or last picture cannot be decoded
    NothingDecodable,  // none of the source's pictures can be decoded
    NothingReadable,   // none can be read
    PicturesElsewhere, // they are in another file, which is not opened
    Encrypted,         // they are
    TooSmall,          // `count` bytes: too few to replace what stands under its name
    OlderKept,         // incomplete, and something stands under its name
    NameTaken,         // a file has appeared under its name, or the one there has changed, since it was asked for
    NotPublished,      // `text`: why it could not take its name
    NotJudged,         // `text`: why the source or the output could not be compared

    // A remark; the outcome stays.
    HiddenShown, // `count` pictures that the source's edit list hides
};

struct Finding {
    Cause cause = Cause::NotJudged;
    double seconds = 0;
    double ofSeconds = 0;
    std::int64_t count = 0;
    std::int64_t ofCount = 0;
    std::optional<double> from = std::nullopt; // seconds of the source's timeline; nothing when unknown
    std::string text = {};

    bool operator==(const Finding&) const = default;
};

struct Verdict {
    Outcome outcome = Outcome::Whole;
    std::vector<Finding> findings; // the gravest first

    bool operator==(const Verdict&) const = default;
};

// A clip's time as people write it: "0:04.2", "1:02:03.0".
[[nodiscard]] std::string clockText(double seconds);
// One line for one finding, without a full stop: "9.8 of 20.0 s could be read".
[[nodiscard]] std::string englishText(const Finding& finding);
// "Incomplete: 9.8 of 20.0 s could be read; ..."; "" for a whole output without remarks.
[[nodiscard]] std::string englishText(const Verdict& verdict);

} // namespace tavrix::judge
