// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/movieatoms.h"

#include <bit>
#include <cmath>

namespace tavrix
{

namespace
{

// The header of a day-long movie takes some ten megabytes.
constexpr std::uint64_t mostMovieBytes = std::uint64_t(256) << 20;
constexpr std::size_t entryHeader = 16;
constexpr std::size_t videoEntryFields = 86;

AtomMatrix matrixFrom(FieldReader& reader)
{
    AtomMatrix matrix;
    matrix.a = reader.s32();
    matrix.b = reader.s32();
    reader.skip(4);
    matrix.c = reader.s32();
    matrix.d = reader.s32();
    reader.skip(4);
    matrix.tx = reader.s32();
    matrix.ty = reader.s32();
    reader.skip(4);
    return matrix;
}

// Times of a version-0 atom have 32 bits, of which all set mean "not known".
std::uint64_t durationFrom(FieldReader& reader, int version)
{
    if (version == 1) {
        const std::uint64_t duration = reader.u64();
        return duration > std::uint64_t(longestTime) ? 0 : duration;
    }
    const std::uint32_t duration = reader.u32();
    return duration == UINT32_MAX ? 0 : duration;
}

void readMovieHeader(ByteView payload, MovieAtoms& movie)
{
    FieldReader reader(payload);
    const int version = reader.u8();
    reader.skip(version == 1 ? 19 : 11);
    const std::uint32_t timeScale = reader.u32();
    const std::uint64_t duration = durationFrom(reader, version);
    reader.skip(16);
    const AtomMatrix matrix = matrixFrom(reader);
    if (!reader.ok()) {
        movie.damaged = true;
        return;
    }
    movie.timeScale = timeScale;
    movie.duration = duration;
    movie.matrix = matrix;
}

bool readTrackHeader(ByteView payload, TrackAtoms& track)
{
    FieldReader reader(payload);
    const std::uint32_t versionAndFlags = reader.u32();
    const int version = static_cast<int>(versionAndFlags >> 24);
    reader.skip(version == 1 ? 16 : 8);
    track.flags = versionAndFlags & 0xFFFFFFU;
    track.id = reader.u32();
    reader.skip(4);
    track.duration = durationFrom(reader, version);
    reader.skip(16);
    track.matrix = matrixFrom(reader);
    track.size.width = reader.u32();
    track.size.height = reader.u32();
    return reader.ok();
}

bool readMediaHeader(ByteView payload, TrackAtoms& track)
{
    FieldReader reader(payload);
    const int version = reader.u8();
    reader.skip(version == 1 ? 19 : 11);
    track.mediaTimeScale = reader.u32();
    track.mediaDuration = durationFrom(reader, version);
    return reader.ok();
}

std::string handlerType(ByteView payload)
{
    FieldReader reader(payload);
    reader.skip(8);
    const std::uint32_t type = reader.u32();
    if (!reader.ok() || type == 0) {
        return {};
    }
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>((type >> shift) & 0xFFU);
    }
    return text;
}

std::optional<FixedSize> apertureSize(ByteView payload)
{
    FieldReader reader(payload);
    reader.skip(4);
    FixedSize size;
    size.width = reader.u32();
    size.height = reader.u32();
    if (!reader.ok() || size.width == 0 || size.height == 0) {
        return std::nullopt;
    }
    return size;
}

bool readEdits(ByteView payload, TrackAtoms& track)
{
    FieldReader reader(payload);
    const int version = reader.u8();
    reader.skip(3);
    const std::uint32_t count = reader.u32();
    track.hasEdits = reader.ok();
    for (std::uint32_t index = 0; index < count; ++index) {
        EditEntry edit;
        edit.duration = version == 1 ? reader.u64() : reader.u32();
        edit.mediaTime = version == 1 ? reader.s64() : reader.s32();
        edit.rate = reader.s32();
        if (!reader.ok() || edit.duration > std::uint64_t(longestTime) || edit.mediaTime > longestTime ||
            edit.mediaTime < -longestTime) {
            return false;
        }
        track.edits.push_back(edit);
    }
    return reader.ok();
}

double quotient(std::uint32_t numerator, std::uint32_t denominator)
{
    return denominator == 0 ? 0.0 : static_cast<double>(numerator) / denominator;
}

void readVideoExtensions(ByteView extensions, DescriptionAtom& description)
{
    for (const Atom& atom : childAtoms(extensions)) {
        FieldReader reader(atom.payload);
        if (atom.type == atomType("pasp")) {
            description.pixelAspectH = reader.u32();
            description.pixelAspectV = reader.u32();
        } else if (atom.type == atomType("clap")) {
            const std::uint32_t widthN = reader.u32();
            const double width = quotient(widthN, reader.u32());
            const std::uint32_t heightN = reader.u32();
            const double height = quotient(heightN, reader.u32());
            if (reader.ok() && width >= 1 && height >= 1) {
                description.cleanWidth = width;
                description.cleanHeight = height;
            }
        }
    }
}

void readVideoEntry(ByteView entry, DescriptionAtom& description)
{
    FieldReader reader(entry, 32);
    description.width = reader.u16();
    description.height = reader.u16();
    if (entry.size() > videoEntryFields) {
        readVideoExtensions(entry.subspan(videoEntryFields), description);
    }
}

// Version 2 fills the fields of the older versions with dummies.
void readSoundVersion2(ByteView entry, DescriptionAtom& description)
{
    FieldReader reader(entry, 40);
    const double rate = std::bit_cast<double>(reader.u64());
    const std::uint32_t channels = reader.u32();
    reader.skip(4);
    const std::uint32_t bits = reader.u32();
    reader.skip(4);
    description.bytesPerPacket = reader.u32();
    const bool plausible = reader.ok() && rate >= 1 && rate < 1e7 && channels <= 256 && bits <= 256;
    description.channels = plausible ? static_cast<int>(channels) : 0;
    description.sampleSize = plausible ? static_cast<int>(bits) : 0;
    description.sampleRateFixed = plausible ? static_cast<std::uint64_t>(std::llround(rate * 65536.0)) : 0;
}

void readSoundEntry(ByteView entry, DescriptionAtom& description)
{
    FieldReader reader(entry, 16);
    description.version = reader.u16();
    reader.skip(6);
    description.channels = reader.s16();
    description.sampleSize = reader.s16();
    reader.skip(4);
    description.sampleRateFixed = reader.u32();
    if (description.version == 1) {
        description.samplesPerPacket = reader.u32();
        reader.skip(4);
        description.bytesPerFrame = reader.u32();
    } else if (description.version == 2) {
        readSoundVersion2(entry, description);
    }
}

bool readDescription(ByteView payload, TrackAtoms& track)
{
    FieldReader reader(payload, 8);
    const std::uint32_t size = reader.u32();
    const std::uint32_t format = reader.u32();
    if (!reader.ok() || size < entryHeader || size > payload.size() - 8) {
        return false;
    }
    const ByteView entry = payload.subspan(8, size);
    track.description.present = true;
    track.description.format = format;
    if (track.mediaType == "soun") {
        readSoundEntry(entry, track.description);
    } else {
        readVideoEntry(entry, track.description);
    }
    return true;
}

bool isSelfContained(ByteView dref)
{
    if (dref.size() < 8) {
        return true;
    }
    for (const Atom& reference : childAtoms(dref.subspan(8))) {
        if ((FieldReader(reference.payload).u32() & 1U) == 0) {
            return false;
        }
    }
    return true;
}

bool hasWholeAtoms(ByteView container)
{
    bool wellFormed = true;
    static_cast<void>(childAtoms(container, &wellFormed));
    return wellFormed;
}

// Bytes of one entry of a sample table; 0 for other atoms.
std::uint64_t tableEntryBytes(std::uint32_t type)
{
    switch (type) {
    case atomType("stss"):
    case atomType("stsz"):
    case atomType("stco"):
        return 4;
    case atomType("stts"):
    case atomType("ctts"):
    case atomType("co64"):
        return 8;
    case atomType("stsc"):
        return 12;
    default:
        return 0;
    }
}

// Whether a table holds as many entries as it says.
bool isWholeTable(const Atom& atom)
{
    std::uint64_t entryBytes = tableEntryBytes(atom.type);
    if (entryBytes == 0) {
        return true;
    }
    FieldReader reader(atom.payload, 4);
    std::uint64_t needed = 8;
    if (atom.type == atomType("stsz")) {
        needed += 4;
        // One size for all samples stands in place of the entries.
        if (reader.u32() != 0) {
            entryBytes = 0;
        }
    }
    needed += reader.u32() * entryBytes;
    return reader.ok() && needed <= atom.payload.size();
}

bool hasWholeTables(ByteView stbl)
{
    bool whole = true;
    for (const Atom& atom : childAtoms(stbl, &whole)) {
        whole = whole && isWholeTable(atom);
    }
    return whole;
}

bool readMedia(ByteView mdia, TrackAtoms& track)
{
    bool wellFormed = true;
    const std::vector<Atom> atoms = childAtoms(mdia, &wellFormed);
    ByteView minf;
    for (const Atom& atom : atoms) {
        if (atom.type == atomType("mdhd")) {
            wellFormed = readMediaHeader(atom.payload, track) && wellFormed;
        } else if (atom.type == atomType("hdlr")) {
            track.mediaType = handlerType(atom.payload);
        } else if (atom.type == atomType("minf") && minf.empty()) {
            minf = atom.payload;
        }
    }
    track.stbl = childPayload(minf, atomType("stbl"));
    track.selfContained = isSelfContained(childPayload(childPayload(minf, atomType("dinf")), atomType("dref")));
    const ByteView stsd = childPayload(track.stbl, atomType("stsd"));
    wellFormed = wellFormed && hasWholeAtoms(minf) && hasWholeTables(track.stbl);
    return (stsd.empty() || readDescription(stsd, track)) && wellFormed;
}

bool readTrack(ByteView trak, TrackAtoms& track)
{
    track.trak = trak;
    bool wellFormed = true;
    for (const Atom& atom : childAtoms(trak, &wellFormed)) {
        if (atom.type == atomType("tkhd")) {
            wellFormed = readTrackHeader(atom.payload, track) && wellFormed;
        } else if (atom.type == atomType("tapt")) {
            track.clef = apertureSize(childPayload(atom.payload, atomType("clef")));
            track.prof = apertureSize(childPayload(atom.payload, atomType("prof")));
            track.enof = apertureSize(childPayload(atom.payload, atomType("enof")));
        } else if (atom.type == atomType("edts")) {
            const ByteView elst = childPayload(atom.payload, atomType("elst"));
            wellFormed = (elst.empty() || readEdits(elst, track)) && wellFormed;
        } else if (atom.type == atomType("mdia")) {
            wellFormed = readMedia(atom.payload, track) && wellFormed;
        }
    }
    return wellFormed;
}

void readUserData(ByteView udta, std::uint64_t fileOffset, MovieAtoms& movie)
{
    bool wellFormed = true;
    for (const Atom& atom : childAtoms(udta, &wellFormed)) {
        if (atom.type != atomType("nsav")) {
            continue;
        }
        FieldReader reader(atom.payload);
        const std::uint32_t value = reader.u32();
        if (!reader.ok()) {
            movie.damaged = true;
            continue;
        }
        movie.nsav = movie.nsav.value_or(0) | value;
        const std::size_t headerSize = atom.whole.size() - atom.payload.size();
        movie.nsavValueOffsets.push_back(fileOffset + atom.offset + headerSize);
    }
    movie.damaged = movie.damaged || !wellFormed;
}

void readMovie(MovieAtoms& movie)
{
    bool wellFormed = true;
    bool hasHeader = false;
    for (const Atom& atom : childAtoms(movie.bytes, &wellFormed)) {
        const std::uint64_t payloadOffset = movie.fileOffset + atom.offset + (atom.whole.size() - atom.payload.size());
        if (atom.type == atomType("mvhd")) {
            readMovieHeader(atom.payload, movie);
            hasHeader = true;
        } else if (atom.type == atomType("trak")) {
            TrackAtoms track;
            movie.damaged = !readTrack(atom.payload, track) || movie.damaged;
            movie.tracks.push_back(track);
        } else if (atom.type == atomType("udta")) {
            readUserData(atom.payload, payloadOffset, movie);
        } else if (atom.type == atomType("cmov")) {
            movie.compressed = true;
        } else if (atom.type == atomType("mvex")) {
            movie.fragmented = true;
        }
    }
    movie.damaged = movie.damaged || !wellFormed || (!hasHeader && !movie.tracks.empty());
}

} // namespace

MovieAtoms readMovieAtoms(const ReadAt& readAt, std::uint64_t fileSize)
{
    MovieAtoms movie;
    const FileAtoms file = topLevelAtoms(readAt, fileSize);
    movie.damaged = file.damaged;
    for (const FileAtom& atom : file.atoms) {
        movie.fragmented = movie.fragmented || atom.type == atomType("moof");
        const std::uint64_t payloadSize = atom.size - atom.headerSize;
        if (atom.type != atomType("moov") || movie.found || payloadSize > mostMovieBytes) {
            continue;
        }
        movie.fileOffset = atom.offset + atom.headerSize;
        movie.bytes.resize(static_cast<std::size_t>(payloadSize));
        if (!readAt(movie.fileOffset, movie.bytes)) {
            movie.damaged = true;
            movie.bytes.clear();
            return movie;
        }
        movie.found = true;
        readMovie(movie);
    }
    return movie;
}

} // namespace tavrix
