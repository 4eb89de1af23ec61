// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/moviedates.h"

#include "media/moviewriter.h"
#include "media/picturestreamdate.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace tavrix
{

namespace
{

// From 1904, where QuickTime begins to count, to 1970.
constexpr std::uint64_t secondsTo1970 = 2082844800;
constexpr std::size_t videoEntryFields = 86;
// The message about the recording stands before the first picture's pieces.
constexpr std::uint64_t sampleHead = 65536;

void readHeader(ByteView mvhd, ClipDates& dates)
{
    FieldReader reader(mvhd);
    const bool wide = reader.u8() == 1;
    reader.skip(3);
    const std::uint64_t created = wide ? reader.u64() : reader.u32();
    reader.skip(wide ? 8 : 4);
    const std::uint32_t scale = reader.u32();
    const std::uint64_t duration = wide ? reader.u64() : reader.u32();
    if (!reader.ok()) {
        return;
    }
    if (created > secondsTo1970 && created < secondsTo1970 + UINT32_MAX) {
        dates.movieHeader = static_cast<std::int64_t>(created - secondsTo1970);
    }
    const bool known = scale > 0 && (wide ? duration < std::uint64_t(longestTime) : duration != UINT32_MAX);
    dates.length = known ? static_cast<double>(duration) / scale : 0;
}

// Bytes of the track's first sample, as many as its head takes; empty when it lies in no known place.
std::vector<std::uint8_t> firstSampleHead(ByteView stbl, const ReadAt& readAt)
{
    FieldReader sizes(childPayload(stbl, atomType("stsz")), 4);
    const std::uint32_t common = sizes.u32();
    sizes.skip(4);
    const std::uint32_t size = common != 0 ? common : sizes.u32();
    const ByteView near = childPayload(stbl, atomType("stco"));
    FieldReader chunks(near.empty() ? childPayload(stbl, atomType("co64")) : near, 8);
    const std::uint64_t offset = near.empty() ? chunks.u64() : chunks.u32();
    if (!sizes.ok() || !chunks.ok()) {
        return {};
    }
    std::vector<std::uint8_t> head(static_cast<std::size_t>(std::min<std::uint64_t>(size, sampleHead)));
    return readAt(offset, head) ? head : std::vector<std::uint8_t>();
}

// Bytes of the length before each unit of the track's samples; 0 for a track that is not H.264.
int unitLengthSize(const TrackAtoms& track)
{
    const std::uint32_t format = track.description.format;
    if (format != atomType("avc1") && format != atomType("avc3")) {
        return 0;
    }
    const ByteView stsd = childPayload(track.stbl, atomType("stsd"));
    if (stsd.size() <= 8 + videoEntryFields) {
        return 0;
    }
    const ByteView avcC = childPayload(stsd.subspan(8 + videoEntryFields), atomType("avcC"));
    return avcC.size() > 4 ? (avcC[4] & 3) + 1 : 0;
}

std::optional<ClockTime> dateBesidePictures(const MovieAtoms& movie, const ReadAt& readAt)
{
    for (const TrackAtoms& track : movie.tracks) {
        const int lengthSize = track.mediaType == "vide" && track.selfContained ? unitLengthSize(track) : 0;
        if (lengthSize != 0) {
            return sampleDate(firstSampleHead(track.stbl, readAt), lengthSize);
        }
    }
    return std::nullopt;
}

std::uint32_t majorBrand(const ReadAt& readAt, std::uint64_t fileSize)
{
    std::array<std::uint8_t, 12> head{};
    if (fileSize < head.size() || !readAt(0, head)) {
        return 0;
    }
    FieldReader reader(head, 4);
    return reader.u32() == atomType("ftyp") ? reader.u32() : 0;
}

} // namespace

ClipDates datesOfMovieAtom(ByteView moov, std::uint32_t brand)
{
    ClipDates dates;
    readHeader(childPayload(moov, atomType("mvhd")), dates);
    const MovieWords words = movieWords(moov);
    for (const std::string& text : words.dates) {
        dates.creationDate = writtenDate(text);
        if (dates.creationDate) {
            break;
        }
    }
    dates.writer = headerWriter(words, brand);
    return dates;
}

ClipDates movieClipDates(const ReadAt& readAt, std::uint64_t fileSize)
{
    const MovieAtoms movie = readMovieAtoms(readAt, fileSize);
    ClipDates dates = datesOfMovieAtom(movie.bytes, majorBrand(readAt, fileSize));
    dates.pictureStream = dateBesidePictures(movie, readAt);
    return dates;
}

} // namespace tavrix
