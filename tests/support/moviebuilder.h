// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// QuickTime files built byte by byte, with exactly the atoms that a test names.
namespace tavrix::test
{

using Bytes = std::vector<std::uint8_t>;

struct BuiltEdit {
    std::uint64_t duration;
    std::int64_t mediaTime;
    std::int32_t rate = 65536;
};

struct BuiltTrack {
    std::uint32_t id = 1;
    std::string mediaType = "vide";
    std::string format = "jpeg";
    std::uint32_t mediaScale = 600;
    std::uint32_t duration = 6000; // movie scale
    std::uint32_t mediaDuration = 6000;
    std::uint16_t width = 720; // stored
    std::uint16_t height = 576;
    double trackWidth = 720;
    double trackHeight = 576;
    std::int32_t matrix[6] = {65536, 0, 0, 65536, 0, 0};                      // a b c d tx ty
    std::vector<std::pair<std::string, std::pair<double, double>>> apertures; // clef, prof, enof
    Bytes extensions; // behind the video fields of the description
    std::vector<BuiltEdit> edits;
    bool longEdits = false;
    Bytes soundFields; // version to rate and what follows, for sound
    std::uint32_t samples = 10;
    std::uint32_t sampleDuration = 600;
    std::uint32_t sampleSize = 16;
    bool external = false;
    std::uint8_t headerVersion = 0;
};

struct BuiltMovie {
    std::uint32_t timeScale = 600;
    std::uint32_t duration = 6000;
    std::int32_t matrix[6] = {65536, 0, 0, 65536, 0, 0};
    std::vector<BuiltTrack> tracks;
    int nsav = -1;          // value of the atom; -1 leaves it out
    bool longSizes = false; // movie and data atoms with sizes of 64 bits
    bool openEnded = false; // the last atom's size says "to the end"
    bool movieFirst = false;
};

void put16(Bytes& bytes, std::uint32_t value);
void put32(Bytes& bytes, std::uint32_t value);
void put64(Bytes& bytes, std::uint64_t value);
[[nodiscard]] Bytes atomBytes(const std::string& type, const Bytes& payload);
[[nodiscard]] Bytes longAtomBytes(const std::string& type, const Bytes& payload);
[[nodiscard]] Bytes pixelAspect(std::uint32_t h, std::uint32_t v);
[[nodiscard]] Bytes cleanAperture(std::uint32_t width, std::uint32_t height);
// Fields 16 to 35 of a sound description.
[[nodiscard]] Bytes soundFields(std::uint16_t version, std::uint16_t channels, std::uint16_t bits, double rate);
// The whole file.
[[nodiscard]] Bytes builtFile(const BuiltMovie& movie);

} // namespace tavrix::test
