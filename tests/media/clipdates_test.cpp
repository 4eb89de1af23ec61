// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/clipdates.h"

#include "support/qtprinters.h"
#include "support_media/cameramessage.h"

#include <gtest/gtest.h>

namespace tavrix::test
{

using namespace built;

namespace
{

constexpr ClockTime recorded{2021, 1, 17, 17, 33, 17};

// A stream whose date stands behind that many bytes of sound.
Bytes lateStream(std::size_t before)
{
    Bytes stream;
    const Bytes sound = transportPacket(0x1100, false, Bytes(184, 7), 192);
    while (stream.size() < before) {
        stream.insert(stream.end(), sound.begin(), sound.end());
    }
    const Bytes pictures = cameraStream(recorded, 192);
    stream.insert(stream.end(), pictures.begin(), pictures.end());
    return stream;
}

} // namespace

TEST(ClipDates, ReadNoMoreOfAStreamThanItsHead)
{
    for (const auto& [before, found] :
         {std::pair<std::size_t, bool>{0, true}, {std::size_t{3} << 20, true}, {std::size_t{5} << 20, false}}) {
        const Bytes stream = lateStream(before);
        std::uint64_t end = 0;
        const ReadAt watched = [&stream, &end](std::uint64_t offset, std::span<std::uint8_t> to) {
            end = std::max(end, offset + to.size());
            return readAtOf(ByteView(stream))(offset, to);
        };
        EXPECT_EQ(clipDates(watched, stream.size()).pictureStream.has_value(), found) << before;
        EXPECT_LE(end, streamHead) << before;
    }
}

TEST(ClipDates, OfOtherFilesAreNone)
{
    for (const Bytes& file : {Bytes(), Bytes(11, 0), Bytes(1000, 0),
                              Bytes{'R', 'I', 'F', 'F', 9, 0, 0, 0, 'W', 'A', 'V', 'E'}, Bytes(2000000, 0xFF)}) {
        const ClipDates dates = clipDates(readAtOf(ByteView(file)), file.size());
        EXPECT_FALSE(dates.pictureStream || dates.creationDate || dates.movieHeader || dates.aviDate);
    }
    // A file that shrinks while it is read.
    const Bytes stream = lateStream(0);
    EXPECT_FALSE(clipDates(readAtOf(ByteView(stream)), stream.size() + 1).pictureStream);
}

} // namespace tavrix::test
