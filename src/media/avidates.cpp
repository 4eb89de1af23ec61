// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/avidates.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace tavrix
{

namespace
{

constexpr std::size_t chunkHeader = 8;
constexpr std::size_t listHeader = 12;
// Headers of cameras take some kilobytes, a picture of the camera's display included.
constexpr std::uint64_t mostListBytes = std::uint64_t{1} << 20;
constexpr int mostChunks = 64;
constexpr int deepestList = 4;
constexpr std::uint32_t nikonRecorded = 0x13;

struct Chunk {
    std::uint32_t type = 0;
    std::uint32_t size = 0; // of what stands behind the header
};

// The best date found so far; a lower rank is a better one.
struct Found {
    int rank = 99;
    std::optional<WrittenDate> date;

    void offer(int offeredRank, const std::optional<WrittenDate>& offered)
    {
        if (offered && offeredRank < rank) {
            rank = offeredRank;
            date = offered;
        }
    }
};

enum Rank { dateChunk, cameraData, nikonData, information };

std::uint32_t littleEndian(ByteView bytes, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = std::min(count, bytes.size()); i > 0; --i) {
        value = (value << 8U) | bytes[i - 1];
    }
    return value;
}

Chunk chunkFrom(ByteView header)
{
    return {FieldReader(header).u32(), littleEndian(header.subspan(4), 4)};
}

std::string_view textOf(ByteView bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Tags of two bytes, their lengths in two bytes, their values.
std::optional<WrittenDate> nikonDate(ByteView tags)
{
    while (tags.size() >= 4) {
        const std::uint32_t tag = littleEndian(tags, 2);
        const std::size_t size = std::min<std::size_t>(littleEndian(tags.subspan(2), 2), tags.size() - 4);
        const ByteView value = tags.subspan(4, size);
        if (tag == nikonRecorded) {
            return writtenDate(textOf(value));
        }
        tags = tags.subspan(4 + size);
    }
    return std::nullopt;
}

void readChunk(std::uint32_t type, ByteView payload, Found& found)
{
    if (type == atomType("IDIT")) {
        found.offer(dateChunk, writtenDate(textOf(payload)));
    } else if (type == atomType("strd")) {
        found.offer(cameraData, firstExifDate(textOf(payload)));
    } else if (type == atomType("nctg")) {
        found.offer(nikonData, nikonDate(payload));
    } else if (type == atomType("ICRD")) {
        found.offer(information, writtenDate(textOf(payload)));
    }
}

void readChunks(ByteView chunks, int depth, Found& found)
{
    while (chunks.size() >= chunkHeader) {
        const Chunk chunk = chunkFrom(chunks);
        const ByteView rest = chunks.subspan(chunkHeader);
        const ByteView payload = rest.first(std::min<std::size_t>(chunk.size, rest.size()));
        if (chunk.type != atomType("LIST")) {
            readChunk(chunk.type, payload, found);
        } else if (payload.size() > 4 && depth < deepestList) {
            readChunks(payload.subspan(4), depth + 1, found);
        }
        // Chunks of odd length are followed by a byte that belongs to none.
        chunks = rest.subspan(std::min<std::size_t>(payload.size() + (payload.size() & 1U), rest.size()));
    }
}

} // namespace

ClipDates aviClipDates(const ReadAt& readAt, std::uint64_t fileSize)
{
    Found found;
    std::uint64_t offset = listHeader;
    std::array<std::uint8_t, listHeader> header{};
    // Of the chunks at the top only the lists of pictures and their index are large, and they are stepped over.
    for (int count = 0; count < mostChunks && offset <= fileSize && fileSize - offset >= listHeader; ++count) {
        if (!readAt(offset, header)) {
            break;
        }
        const Chunk chunk = chunkFrom(header);
        const std::uint64_t whole = chunkHeader + std::uint64_t{chunk.size};
        const bool pictures = chunk.type == atomType("LIST") && FieldReader(header, 8).u32() == atomType("movi");
        const bool index = chunk.type == atomType("idx1");
        if (!pictures && !index && whole <= mostListBytes) {
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(whole, fileSize - offset)));
            if (!readAt(offset, bytes)) {
                break;
            }
            readChunks(bytes, 0, found);
        }
        offset += whole + (chunk.size & 1U);
    }
    ClipDates dates;
    dates.aviDate = found.date;
    return dates;
}

} // namespace tavrix
