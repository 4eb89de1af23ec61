// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/movieheader.h"

#include "media/sampletablewriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace tavrix
{

namespace
{

constexpr std::uint64_t mostShortTime = 0xFFFFFFFEU;

ByteView tail(ByteView bytes, std::size_t from)
{
    return from >= bytes.size() ? ByteView() : bytes.subspan(from);
}

// The part of a movie, track or media header in front of its duration. `between` are the bytes that stand between the
// dates and the duration.
struct HeaderParts {
    std::uint32_t flags = 0;
    bool isLong = false;
    std::uint64_t created = 0;
    std::uint64_t modified = 0;
    ByteView rest; // behind the duration
};

HeaderParts headerParts(ByteView payload, std::size_t between)
{
    FieldReader reader(payload);
    const std::uint32_t versionAndFlags = reader.u32();
    HeaderParts parts;
    parts.flags = versionAndFlags & 0xFFFFFFU;
    parts.isLong = (versionAndFlags >> 24) == 1;
    parts.created = parts.isLong ? reader.u64() : reader.u32();
    parts.modified = parts.isLong ? reader.u64() : reader.u32();
    const std::size_t dates = parts.isLong ? 16 : 8;
    const std::size_t duration = parts.isLong ? 8 : 4;
    parts.rest = tail(payload, 4 + dates + between + duration);
    return parts;
}

void writeTime(AtomWriter& writer, bool isLong, std::uint64_t value)
{
    if (isLong) {
        writer.u64(value);
    } else {
        writer.u32(static_cast<std::uint32_t>(value));
    }
}

void writeVersionAndDates(AtomWriter& writer, const HeaderParts& parts, bool isLong)
{
    writer.u32((isLong ? 0x1000000U : 0U) | parts.flags);
    writeTime(writer, isLong, parts.created);
    writeTime(writer, isLong, parts.modified);
}

void writeTrackHeader(AtomWriter& writer, ByteView payload, const TrackRewrite& track)
{
    constexpr std::size_t displayFields = 52; // reserved, layer, group, volume, matrix
    const HeaderParts parts = headerParts(payload, 8);
    const bool isLong = parts.isLong || track.shownDuration > mostShortTime;
    writer.begin(atomType("tkhd"));
    writeVersionAndDates(writer, parts, isLong);
    writer.u32(track.source->id);
    writer.u32(0);
    writeTime(writer, isLong, track.shownDuration);
    writer.raw(parts.rest.first(std::min(parts.rest.size(), displayFields)));
    if (track.change.size) {
        writer.u32(static_cast<std::uint32_t>(track.change.size->width) << 16);
        writer.u32(static_cast<std::uint32_t>(track.change.size->height) << 16);
    } else {
        writer.raw(tail(parts.rest, displayFields));
    }
    writer.end();
}

void writeMediaHeader(AtomWriter& writer, ByteView payload, const TrackRewrite& track)
{
    const HeaderParts parts = headerParts(payload, 4);
    const bool isLong = parts.isLong || track.selected.mediaDuration > mostShortTime;
    writer.begin(atomType("mdhd"));
    writeVersionAndDates(writer, parts, isLong);
    writer.u32(track.mediaTimeScale);
    writeTime(writer, isLong, track.selected.mediaDuration);
    writer.raw(parts.rest);
    writer.end();
}

// Speed of a piece in 16 fractional bits; what rounding to the movie's scale explains counts as normal speed.
std::int32_t pieceRate(const TrackPiece& piece, const TrackRewrite& track)
{
    constexpr std::int32_t normal = 65536;
    if (piece.empty) {
        return normal;
    }
    const std::int64_t natural = rescaled(piece.shown, track.mediaTimeScale, track.movieTimeScale);
    if (piece.mediaLength == 0 || natural == 0) {
        return piece.mediaLength == 0 ? 0 : normal;
    }
    const std::int64_t tolerance = 2 + 2 * rescaled(1, track.mediaTimeScale, track.movieTimeScale) + natural / 1000000;
    if (std::abs(piece.mediaLength - natural) <= tolerance) {
        return normal;
    }
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(rescaled(normal, piece.mediaLength, natural), 1, INT32_MAX));
}

void writeEditList(AtomWriter& writer, const TrackRewrite& track)
{
    const std::vector<TrackPiece>& pieces = track.selected.pieces;
    const bool isLong = std::any_of(pieces.begin(), pieces.end(), [](const TrackPiece& piece) {
        return piece.shown > static_cast<std::int64_t>(mostShortTime) || piece.mediaStart > INT32_MAX ||
               piece.mediaStart < INT32_MIN;
    });
    writer.begin(atomType("edts"));
    writer.begin(atomType("elst"));
    writer.u32(isLong ? 0x1000000U : 0U);
    writer.u32(static_cast<std::uint32_t>(pieces.size()));
    for (const TrackPiece& piece : pieces) {
        const std::int64_t mediaTime = piece.empty ? -1 : piece.mediaStart;
        writeTime(writer, isLong, static_cast<std::uint64_t>(piece.shown));
        writeTime(writer, isLong, static_cast<std::uint64_t>(mediaTime));
        writer.s32(pieceRate(piece, track));
    }
    writer.end();
    writer.end();
}

void writeTrackUserData(AtomWriter& writer, ByteView udta, const std::string& displayName)
{
    if (displayName.empty()) {
        if (!udta.empty()) {
            writer.atom(atomType("udta"), udta);
        }
        return;
    }
    writer.begin(atomType("udta"));
    for (const Atom& atom : childAtoms(udta)) {
        if (atom.type != atomType("name")) {
            writer.raw(atom.whole);
        }
    }
    writer.begin(atomType("name"));
    for (const char letter : displayName) {
        writer.u8(static_cast<std::uint8_t>(letter));
    }
    writer.end();
    writer.end();
}

void writeMediaInformation(AtomWriter& writer, ByteView minf, const TrackRewrite& track, std::uint64_t dataStart)
{
    writer.begin(atomType("minf"));
    for (const Atom& atom : childAtoms(minf)) {
        if (atom.type == atomType("stbl")) {
            writeSampleTable(writer, atom.payload, track, dataStart);
        } else {
            writer.raw(atom.whole);
        }
    }
    writer.end();
}

void writeMedia(AtomWriter& writer, ByteView mdia, const TrackRewrite& track, std::uint64_t dataStart)
{
    writer.begin(atomType("mdia"));
    for (const Atom& atom : childAtoms(mdia)) {
        if (atom.type == atomType("mdhd")) {
            writeMediaHeader(writer, atom.payload, track);
        } else if (atom.type == atomType("minf")) {
            writeMediaInformation(writer, atom.payload, track, dataStart);
        } else {
            writer.raw(atom.whole);
        }
    }
    writer.end();
}

void writeScaledMatrix(AtomWriter& writer, ByteView matrix, const DisplayScale& scale)
{
    FieldReader reader(matrix);
    // Order a b u, c d v, tx ty w: the first of each three scales with x, the second with y.
    for (int index = 0; index < 9; ++index) {
        const std::int32_t value = reader.s32();
        const double factor = index % 3 == 0 ? scale.x : (index % 3 == 1 ? scale.y : 1.0);
        const double scaled = std::clamp(std::round(value * factor), -2147483648.0, 2147483647.0);
        writer.s32(static_cast<std::int32_t>(scaled));
    }
}

} // namespace

void writeMovieHeader(AtomWriter& writer, ByteView payload, std::uint32_t timeScale, std::uint64_t duration,
                      const std::optional<DisplayScale>& scale, bool edited)
{
    constexpr std::size_t beforeMatrix = 16;
    constexpr std::size_t matrixBytes = 36;
    constexpr std::size_t markerBytes = 24; // preview, poster, selection and current time, in the old movie's times
    const HeaderParts parts = headerParts(payload, 4);
    const bool isLong = parts.isLong || duration > mostShortTime;
    writer.begin(atomType("mvhd"));
    writeVersionAndDates(writer, parts, isLong);
    writer.u32(timeScale);
    writeTime(writer, isLong, duration);
    const bool complete = parts.rest.size() >= beforeMatrix + matrixBytes + markerBytes;
    if (!complete) {
        writer.raw(parts.rest);
        writer.end();
        return;
    }
    writer.raw(parts.rest.first(beforeMatrix));
    const ByteView matrix = parts.rest.subspan(beforeMatrix, matrixBytes);
    if (scale) {
        writeScaledMatrix(writer, matrix, *scale);
    } else {
        writer.raw(matrix);
    }
    const std::array<std::uint8_t, markerBytes> noMarkers{};
    writer.raw(edited ? ByteView(noMarkers) : parts.rest.subspan(beforeMatrix + matrixBytes, markerBytes));
    writer.raw(parts.rest.subspan(beforeMatrix + matrixBytes + markerBytes));
    writer.end();
}

void writeTrack(AtomWriter& writer, const TrackRewrite& track, std::uint64_t dataStart)
{
    bool editsWritten = false;
    bool nameWritten = false;
    writer.begin(atomType("trak"));
    for (const Atom& atom : childAtoms(track.source->trak)) {
        if (atom.type == atomType("tkhd")) {
            writeTrackHeader(writer, atom.payload, track);
        } else if (atom.type == atomType("edts") || (atom.type == atomType("tapt") && track.change.size)) {
            // A forced size holds in every aperture mode; the edit list is written anew.
            continue;
        } else if (atom.type == atomType("mdia")) {
            writeEditList(writer, track);
            editsWritten = true;
            writeMedia(writer, atom.payload, track, dataStart);
        } else if (atom.type == atomType("udta") && !nameWritten) {
            writeTrackUserData(writer, atom.payload, track.change.displayName);
            nameWritten = true;
        } else {
            writer.raw(atom.whole);
        }
    }
    if (!editsWritten) {
        writeEditList(writer, track);
    }
    if (!nameWritten) {
        writeTrackUserData(writer, {}, track.change.displayName);
    }
    writer.end();
}

} // namespace tavrix
