// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The movie atom of a QuickTime or MP4 file and its tracks.

#include "media/atomreader.h"
#include "media/sizes.h"

#include <optional>
#include <string>

namespace tavrix
{

// Times beyond this are no times of a movie; they read as unknown or damaged, so that sums of them stay in range.
inline constexpr std::int64_t longestTime = std::int64_t(1) << 55;

// x' = a x + c y + tx, y' = b x + d y + ty; 16 fractional bits each.
struct AtomMatrix {
    std::int32_t a = 65536;
    std::int32_t b = 0;
    std::int32_t c = 0;
    std::int32_t d = 65536;
    std::int32_t tx = 0;
    std::int32_t ty = 0;
};

struct EditEntry {
    std::uint64_t duration = 0; // movie scale
    std::int64_t mediaTime = 0; // media scale; -1 = nothing is shown
    std::int32_t rate = 65536;  // 16 fractional bits; 0 = freeze
};

// A track's first sample description; the kind decides which fields are filled.
struct DescriptionAtom {
    bool present = false;
    std::uint32_t format = 0;
    int width = 0;
    int height = 0;
    double cleanWidth = 0; // pixels of the clean aperture; 0 when not told
    double cleanHeight = 0;
    std::uint32_t pixelAspectH = 0; // 0 when not told
    std::uint32_t pixelAspectV = 0;
    int version = 0;
    int channels = 0;
    int sampleSize = 0;                // bits
    std::uint64_t sampleRateFixed = 0; // 16 fractional bits
    std::uint32_t samplesPerPacket = 0;
    std::uint32_t bytesPerFrame = 0;
    std::uint32_t bytesPerPacket = 0; // version 2 only
};

struct TrackAtoms {
    ByteView trak; // payload
    ByteView stbl; // payload, empty when there is none
    std::uint32_t id = 0;
    std::uint32_t flags = 0;
    std::uint64_t duration = 0; // movie scale
    AtomMatrix matrix;
    FixedSize size;
    std::string mediaType; // four characters, "" when not told
    std::uint32_t mediaTimeScale = 0;
    std::uint64_t mediaDuration = 0;
    std::optional<FixedSize> clef;
    std::optional<FixedSize> prof;
    std::optional<FixedSize> enof;
    bool hasEdits = false;
    std::vector<EditEntry> edits;
    DescriptionAtom description;
    bool selfContained = true; // all media lie in this file
};

struct MovieAtoms {
    bool found = false;
    bool damaged = false;    // some atom does not fit where it stands
    bool compressed = false; // the movie's header is packed and was not read
    bool fragmented = false;
    std::uint64_t fileOffset = 0;    // of the payload
    std::vector<std::uint8_t> bytes; // payload of the movie atom; the tracks' views point into it
    std::uint32_t timeScale = 0;
    std::uint64_t duration = 0;
    AtomMatrix matrix;
    std::vector<TrackAtoms> tracks;
    std::optional<std::uint32_t> nsav;
    std::vector<std::uint64_t> nsavValueOffsets; // in the file, four bytes each

    MovieAtoms() = default;
    MovieAtoms(const MovieAtoms&) = delete;
    MovieAtoms& operator=(const MovieAtoms&) = delete;
    MovieAtoms(MovieAtoms&&) = default;
    MovieAtoms& operator=(MovieAtoms&&) = default;
    ~MovieAtoms() = default;
};

// The first movie atom of the file.
[[nodiscard]] MovieAtoms readMovieAtoms(const ReadAt& readAt, std::uint64_t fileSize);

} // namespace tavrix
