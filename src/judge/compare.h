// SPDX-License-Identifier: GPL-3.0-or-later
// The judgement itself: what was measured of an output against what a player shows of its source. Nothing is read here.
#pragma once

#include "judge/verdict.h"
#include "media/decoding.h"
#include "media/reading.h"

#include <cstdint>
#include <optional>

namespace tavrix::judge
{

// How the pictures or the sound got into the output.
enum class Way {
    Copied,
    Encoded,
    Left, // not asked for
};

struct Asked {
    Way picture = Way::Copied;
    Way sound = Way::Encoded;
    // Pictures per second where the output was to have another rate than the source; nothing where each picture of the
    // source was to come out.
    std::optional<double> rate;
};

// What the writer itself counted; nothing where it did not say.
struct WriterCounts {
    std::optional<std::int64_t> packetsRead;    // of the pictures
    std::optional<std::int64_t> decoded;        // pictures
    std::optional<std::int64_t> decodeErrors;   // pictures refused or damaged
    std::optional<std::int64_t> packetsWritten; // of the pictures
};

// What was measured. What was not looked at is nothing.
struct Evidence {
    media::Reading source;
    media::Reading output;
    std::optional<media::DecodedPictures> sourcePictures; // decoded
    std::optional<media::DecodedPictures> sourceSound;    // decoded, in packets
    std::optional<media::DecodedEnds> outputEnds;
    WriterCounts writer;
};

// Whether the packets alone leave it open what can be seen or heard of the source, so that it has to be decoded.
[[nodiscard]] bool pictureIsDoubtful(const Evidence& evidence, const Asked& asked);
[[nodiscard]] bool soundIsDoubtful(const Evidence& evidence, const Asked& asked);

[[nodiscard]] Verdict compare(const Evidence& evidence, const Asked& asked);

} // namespace tavrix::judge
