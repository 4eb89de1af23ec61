// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/clipdates.h"

#include "media/avidates.h"
#include "media/moviedates.h"
#include "media/picturestreamdate.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tavrix
{

namespace
{

// Most streams tell the date in their first pictures.
constexpr std::uint64_t firstLook = std::uint64_t{1} << 20;

bool isAvi(ByteView head)
{
    FieldReader reader(head);
    const bool riff = reader.u32() == atomType("RIFF");
    reader.skip(4);
    return riff && reader.u32() == atomType("AVI ");
}

bool isMovie(ByteView head)
{
    constexpr std::array<std::uint32_t, 8> first = {atomType("ftyp"), atomType("moov"), atomType("mdat"),
                                                    atomType("wide"), atomType("free"), atomType("skip"),
                                                    atomType("pnot"), atomType("uuid")};
    return std::find(first.begin(), first.end(), FieldReader(head, 4).u32()) != first.end();
}

ClipDates streamClipDates(const ReadAt& readAt, std::uint64_t fileSize)
{
    ClipDates dates;
    for (const std::uint64_t most : {firstLook, streamHead}) {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(fileSize, most)));
        if (!readAt(0, bytes) || !isTransportStream(bytes)) {
            break;
        }
        dates.pictureStream = transportStreamDate(bytes);
        if (dates.pictureStream || bytes.size() == fileSize) {
            break;
        }
    }
    return dates;
}

} // namespace

ClipDates clipDates(const ReadAt& readAt, std::uint64_t fileSize)
{
    std::array<std::uint8_t, 12> head{};
    if (fileSize < head.size() || !readAt(0, head)) {
        return {};
    }
    if (isAvi(head)) {
        return aviClipDates(readAt, fileSize);
    }
    return isMovie(head) ? movieClipDates(readAt, fileSize) : streamClipDates(readAt, fileSize);
}

} // namespace tavrix
