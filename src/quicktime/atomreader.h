#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Reading of QuickTime and ISO base media files atom by atom. Every access is checked against the bytes at hand: a
// damaged file yields less, never more. Free of Qt, so that the tools can use it.
namespace tavrix
{

using ByteView = std::span<const std::uint8_t>;

[[nodiscard]] constexpr std::uint32_t atomType(const char (&text)[5])
{
    return (std::uint32_t(std::uint8_t(text[0])) << 24) | (std::uint32_t(std::uint8_t(text[1])) << 16) |
           (std::uint32_t(std::uint8_t(text[2])) << 8) | std::uint32_t(std::uint8_t(text[3]));
}

// Big-endian fields one after the other. After a read past the end everything reads as 0 and ok() is false.
class FieldReader
{
public:
    explicit FieldReader(ByteView bytes, std::size_t position = 0) : bytes_(bytes), position_(position) {}
    [[nodiscard]] bool ok() const { return ok_; }
    void skip(std::size_t count);
    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::int16_t s16() { return static_cast<std::int16_t>(u16()); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::int32_t s32() { return static_cast<std::int32_t>(u32()); }
    std::uint64_t u64() { return number(8); }
    std::int64_t s64() { return static_cast<std::int64_t>(u64()); }

private:
    std::uint64_t number(std::size_t bytes);

    ByteView bytes_;
    std::size_t position_;
    bool ok_ = true;
};

// One atom of a container that lies in memory.
struct Atom {
    std::uint32_t type = 0;
    std::size_t offset = 0; // of the header, from the start of the container's payload
    ByteView whole;         // header included
    ByteView payload;
};

// The container's atoms in order; *wellFormed tells whether they fill it exactly. A zero word may end the list, and up
// to seven bytes may be left over.
[[nodiscard]] std::vector<Atom> childAtoms(ByteView container, bool* wellFormed = nullptr);
// The first child of that type; an empty view when there is none.
[[nodiscard]] ByteView childPayload(ByteView container, std::uint32_t type);

// One atom at the top of a file.
struct FileAtom {
    std::uint32_t type = 0;
    std::uint64_t offset = 0; // of the header
    std::uint64_t headerSize = 0;
    std::uint64_t size = 0; // header included
};

// Random access to a file's bytes; false when the range cannot be read in full.
using ReadAt = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> to)>;

struct FileAtoms {
    std::vector<FileAtom> atoms;
    bool damaged = false; // an atom reaches past the end, or there are bytes that are no atom
};

[[nodiscard]] FileAtoms topLevelAtoms(const ReadAt& readAt, std::uint64_t fileSize);
[[nodiscard]] ReadAt readAtOf(ByteView bytes);
// The descriptor is not owned.
[[nodiscard]] ReadAt readAtOf(int descriptor);

// x' = a x + c y + tx, y' = b x + d y + ty; 16 fractional bits each.
struct AtomMatrix {
    std::int32_t a = 65536;
    std::int32_t b = 0;
    std::int32_t c = 0;
    std::int32_t d = 65536;
    std::int32_t tx = 0;
    std::int32_t ty = 0;
};

// 16 fractional bits.
struct AtomSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct EditEntry {
    std::uint64_t duration = 0; // movie scale
    std::int64_t mediaTime = 0; // media scale; -1 = nothing is shown
    std::int32_t rate = 65536;  // 16 fractional bits; 0 = freeze
};

struct CleanAperture {
    double width = 0;
    double height = 0;
};

// A track's first sample description; the kind decides which fields are filled.
struct DescriptionAtom {
    bool present = false;
    std::uint32_t format = 0;
    int width = 0;
    int height = 0;
    std::optional<CleanAperture> cleanAperture;
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
    AtomSize size;
    std::string mediaType; // four characters, "" when not told
    std::uint32_t mediaTimeScale = 0;
    std::uint64_t mediaDuration = 0;
    std::optional<AtomSize> clef;
    std::optional<AtomSize> prof;
    std::optional<AtomSize> enof;
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
