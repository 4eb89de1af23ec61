// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/moviebuilder.h"

#include <algorithm>

namespace tavrix::test
{

namespace
{

void put(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void putText(Bytes& bytes, const std::string& text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

std::uint32_t fixed(double value)
{
    return static_cast<std::uint32_t>(value * 65536.0);
}

void putMatrix(Bytes& bytes, const std::int32_t (&matrix)[6])
{
    const std::int64_t fields[] = {matrix[0], matrix[1], 0, matrix[2], matrix[3], 0, matrix[4], matrix[5], 0x40000000};
    for (const std::int64_t field : fields) {
        put32(bytes, static_cast<std::uint32_t>(field));
    }
}

Bytes movieHeader(const BuiltMovie& movie)
{
    Bytes bytes;
    for (const std::uint32_t field : {0U, 0U, 0U, movie.timeScale, movie.duration, 0x10000U}) {
        put32(bytes, field);
    }
    put(bytes, Bytes(12, 0)); // volume and reserved
    putMatrix(bytes, movie.matrix);
    put(bytes, Bytes(24, 0));
    put32(bytes, 9);
    return atomBytes("mvhd", bytes);
}

Bytes trackHeader(const BuiltTrack& track)
{
    Bytes bytes;
    const bool isLong = track.headerVersion == 1;
    put32(bytes, (std::uint32_t(track.headerVersion) << 24) | 3U);
    put(bytes, Bytes(isLong ? 16 : 8, 0));
    put32(bytes, track.id);
    put32(bytes, 0);
    if (isLong) {
        put64(bytes, track.duration);
    } else {
        put32(bytes, track.duration);
    }
    put(bytes, Bytes(16, 0));
    putMatrix(bytes, track.matrix);
    put32(bytes, fixed(track.trackWidth));
    put32(bytes, fixed(track.trackHeight));
    return atomBytes("tkhd", bytes);
}

Bytes apertureAtoms(const BuiltTrack& track)
{
    if (track.apertures.empty()) {
        return {};
    }
    Bytes bytes;
    for (const auto& [name, size] : track.apertures) {
        Bytes payload;
        put32(payload, 0);
        put32(payload, fixed(size.first));
        put32(payload, fixed(size.second));
        put(bytes, atomBytes(name, payload));
    }
    return atomBytes("tapt", bytes);
}

Bytes editAtoms(const BuiltTrack& track)
{
    if (track.edits.empty()) {
        return {};
    }
    Bytes bytes;
    put32(bytes, track.longEdits ? 0x1000000U : 0U);
    put32(bytes, static_cast<std::uint32_t>(track.edits.size()));
    for (const BuiltEdit& edit : track.edits) {
        if (track.longEdits) {
            put64(bytes, edit.duration);
            put64(bytes, static_cast<std::uint64_t>(edit.mediaTime));
        } else {
            put32(bytes, static_cast<std::uint32_t>(edit.duration));
            put32(bytes, static_cast<std::uint32_t>(edit.mediaTime));
        }
        put32(bytes, static_cast<std::uint32_t>(edit.rate));
    }
    return atomBytes("edts", atomBytes("elst", bytes));
}

Bytes videoDescription(const BuiltTrack& track)
{
    Bytes bytes(6, 0);
    put16(bytes, 1);
    put(bytes, Bytes(16, 0));
    put16(bytes, track.width);
    put16(bytes, track.height);
    put(bytes, Bytes(46, 0));
    put16(bytes, 24);
    put16(bytes, 0xFFFF);
    put(bytes, track.extensions);
    return atomBytes(track.format, bytes);
}

Bytes description(const BuiltTrack& track)
{
    Bytes bytes;
    put32(bytes, 0);
    put32(bytes, 1);
    if (track.mediaType == "soun") {
        Bytes entry(6, 0);
        put16(entry, 1);
        put(entry, track.soundFields);
        put(bytes, atomBytes(track.format, entry));
    } else {
        put(bytes, videoDescription(track));
    }
    return atomBytes("stsd", bytes);
}

Bytes table(const std::string& type, const std::vector<std::uint32_t>& fields)
{
    Bytes bytes;
    for (const std::uint32_t field : fields) {
        put32(bytes, field);
    }
    return atomBytes(type, bytes);
}

Bytes sampleTable(const BuiltTrack& track, std::uint32_t dataOffset)
{
    Bytes bytes = description(track);
    put(bytes, table("stts", {0, 1, track.samples, track.sampleDuration}));
    put(bytes, table("stsc", {0, 1, 1, track.samples, 1}));
    put(bytes, table("stsz", {0, track.sampleSize, track.samples}));
    put(bytes, table("stco", {0, 1, dataOffset}));
    return atomBytes("stbl", bytes);
}

Bytes mediaInformation(const BuiltTrack& track, std::uint32_t dataOffset)
{
    Bytes reference;
    put32(reference, 0);
    put32(reference, 1);
    Bytes flags;
    put32(flags, track.external ? 0 : 1);
    put(reference, atomBytes("alis", flags));
    Bytes bytes = atomBytes(track.mediaType == "soun" ? "smhd" : "vmhd", Bytes(track.mediaType == "soun" ? 8 : 12, 0));
    put(bytes, atomBytes("dinf", atomBytes("dref", reference)));
    put(bytes, sampleTable(track, dataOffset));
    return atomBytes("minf", bytes);
}

Bytes trackAtom(const BuiltTrack& track, std::uint32_t dataOffset)
{
    Bytes header;
    for (const std::uint32_t field : {0U, 0U, 0U, track.mediaScale, track.mediaDuration, 0U}) {
        put32(header, field);
    }
    Bytes handler(4, 0);
    putText(handler, "mhlr");
    putText(handler, track.mediaType);
    put(handler, Bytes(13, 0));
    Bytes media = atomBytes("mdhd", header);
    put(media, atomBytes("hdlr", handler));
    put(media, mediaInformation(track, dataOffset));
    Bytes bytes = trackHeader(track);
    put(bytes, apertureAtoms(track));
    put(bytes, editAtoms(track));
    put(bytes, atomBytes("mdia", media));
    return atomBytes("trak", bytes);
}

Bytes movieAtom(const BuiltMovie& movie, std::uint32_t dataOffset)
{
    Bytes bytes = movieHeader(movie);
    for (const BuiltTrack& track : movie.tracks) {
        put(bytes, trackAtom(track, dataOffset));
        dataOffset += track.samples * track.sampleSize;
    }
    if (movie.nsav >= 0) {
        Bytes value;
        put32(value, static_cast<std::uint32_t>(movie.nsav));
        Bytes userData = atomBytes("nsav", value);
        put32(userData, 0); // the list of user data may end with a zero word
        put(bytes, atomBytes("udta", userData));
    }
    return movie.longSizes ? longAtomBytes("moov", bytes) : atomBytes("moov", bytes);
}

} // namespace

void put16(Bytes& bytes, std::uint32_t value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void put32(Bytes& bytes, std::uint32_t value)
{
    put16(bytes, value >> 16);
    put16(bytes, value & 0xFFFFU);
}

void put64(Bytes& bytes, std::uint64_t value)
{
    put32(bytes, static_cast<std::uint32_t>(value >> 32));
    put32(bytes, static_cast<std::uint32_t>(value));
}

Bytes atomBytes(const std::string& type, const Bytes& payload)
{
    Bytes bytes;
    put32(bytes, static_cast<std::uint32_t>(payload.size() + 8));
    putText(bytes, type);
    put(bytes, payload);
    return bytes;
}

Bytes longAtomBytes(const std::string& type, const Bytes& payload)
{
    Bytes bytes;
    put32(bytes, 1);
    putText(bytes, type);
    put64(bytes, payload.size() + 16);
    put(bytes, payload);
    return bytes;
}

Bytes pixelAspect(std::uint32_t h, std::uint32_t v)
{
    return table("pasp", {h, v});
}

Bytes cleanAperture(std::uint32_t width, std::uint32_t height)
{
    return table("clap", {width, 1, height, 1, 0, 1, 0, 1});
}

Bytes soundFields(std::uint16_t version, std::uint16_t channels, std::uint16_t bits, double rate)
{
    Bytes bytes;
    put16(bytes, version);
    put(bytes, Bytes(6, 0));
    put16(bytes, channels);
    put16(bytes, bits);
    put32(bytes, 0);
    put32(bytes, fixed(rate));
    return bytes;
}

Bytes builtFile(const BuiltMovie& movie)
{
    Bytes data;
    std::uint8_t value = 0;
    for (const BuiltTrack& track : movie.tracks) {
        for (std::uint32_t index = 0; index < track.samples * track.sampleSize; ++index) {
            data.push_back(value++);
        }
    }
    Bytes file = atomBytes("ftyp", {'q', 't', ' ', ' ', 0, 0, 2, 0, 'q', 't', ' ', ' '});
    const Bytes media = movie.longSizes ? longAtomBytes("mdat", data) : atomBytes("mdat", data);
    const auto mediaHeader = static_cast<std::uint32_t>(media.size() - data.size());
    const auto start = static_cast<std::uint32_t>(file.size());
    if (movie.movieFirst) {
        const auto size = static_cast<std::uint32_t>(movieAtom(movie, 0).size());
        put(file, movieAtom(movie, start + size + mediaHeader));
        put(file, media);
        return file;
    }
    put(file, media);
    Bytes header = movieAtom(movie, start + mediaHeader);
    if (movie.openEnded) {
        std::fill_n(header.begin(), 4, std::uint8_t(0));
    }
    put(file, header);
    return file;
}

} // namespace tavrix::test
