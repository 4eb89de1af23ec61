// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/movieatoms.h"

#include "media/sampletables.h"
#include "support/moviebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

namespace tavrix::test
{

namespace
{

MovieAtoms readFrom(const Bytes& file)
{
    return readMovieAtoms(readAtOf(ByteView(file)), file.size());
}

BuiltMovie plainMovie()
{
    BuiltMovie movie;
    movie.tracks.emplace_back();
    return movie;
}

BuiltTrack soundTrack(const char* format, const Bytes& fields)
{
    BuiltTrack track;
    track.mediaType = "soun";
    track.format = format;
    track.soundFields = fields;
    return track;
}

} // namespace

TEST(FieldReaderTest, readsBigEndianAndFailsForGood)
{
    const Bytes bytes{1, 2, 3, 4, 5, 6, 0xFF, 0xFE};
    FieldReader reader(bytes);
    EXPECT_EQ(reader.u8(), 1);
    EXPECT_EQ(reader.u32(), 0x02030405U);
    reader.skip(1);
    EXPECT_EQ(reader.s16(), -2);
    EXPECT_TRUE(reader.ok());
    EXPECT_EQ(reader.u8(), 0);
    EXPECT_FALSE(reader.ok());
    EXPECT_EQ(FieldReader(bytes, 100).u32(), 0U);
}

TEST(ChildAtomsTest, refusesMoreAtomsThanAMovieHas)
{
    Bytes header;
    put32(header, 8);
    put32(header, atomType("free"));
    Bytes many;
    for (int i = 0; i < 1000001; ++i) {
        many.insert(many.end(), header.begin(), header.end());
    }
    bool wellFormed = true;
    EXPECT_EQ(childAtoms(many, &wellFormed).size(), 1000000U);
    EXPECT_FALSE(wellFormed);
}

TEST(ChildAtomsTest, toleratesAZeroWordAndAFewBytesAtTheEnd)
{
    Bytes bytes = atomBytes("abcd", {1, 2});
    const Bytes second = longAtomBytes("efgh", {3});
    bytes.insert(bytes.end(), second.begin(), second.end());
    for (const Bytes& tail : {Bytes{}, Bytes{0, 0, 0, 0}, Bytes{1, 2, 3, 4, 5, 6, 7}, Bytes(12, 0)}) {
        Bytes all = bytes;
        all.insert(all.end(), tail.begin(), tail.end());
        bool wellFormed = false;
        const std::vector<Atom> atoms = childAtoms(all, &wellFormed);
        EXPECT_TRUE(wellFormed);
        ASSERT_EQ(atoms.size(), 2U);
        EXPECT_EQ(atoms[0].type, atomType("abcd"));
        EXPECT_EQ(atoms[1].payload.size(), 1U);
        EXPECT_EQ(atoms[1].offset, 10U);
    }
}

TEST(ChildAtomsTest, stopsAtAnAtomThatDoesNotFit)
{
    const Bytes good = atomBytes("abcd", {});
    for (const Bytes& bad :
         {Bytes{0, 0, 0, 9, 'x', 'x', 'x', 'x'}, Bytes{0, 0, 0, 7, 'x', 'x', 'x', 'x'},
          Bytes{0, 0, 0, 0, 'x', 'x', 'x', 'x'}, Bytes{0, 0, 0, 1, 'x', 'x', 'x', 'x', 0, 0, 0, 0, 0, 0, 0, 15},
          Bytes{0, 0, 0, 1, 'x', 'x', 'x', 'x', 255, 255, 255, 255, 255, 255, 255, 255}}) {
        Bytes all = good;
        all.insert(all.end(), bad.begin(), bad.end());
        bool wellFormed = true;
        EXPECT_EQ(childAtoms(all, &wellFormed).size(), 1U);
        EXPECT_FALSE(wellFormed);
    }
}

TEST(MovieAtomsTest, readsTheMovieHeaderWhereverItStands)
{
    BuiltMovie movie = plainMovie();
    movie.timeScale = 29970;
    movie.duration = 299700;
    for (int variant = 0; variant < 4; ++variant) {
        movie.longSizes = variant == 1;
        movie.openEnded = variant == 2;
        movie.movieFirst = variant == 3;
        const MovieAtoms atoms = readFrom(builtFile(movie));
        EXPECT_TRUE(atoms.found) << variant;
        EXPECT_FALSE(atoms.damaged) << variant;
        EXPECT_EQ(atoms.timeScale, 29970U);
        EXPECT_EQ(atoms.duration, 299700U);
        EXPECT_EQ(atoms.tracks.size(), 1U);
    }
}

TEST(MovieAtomsTest, anUnknownDurationReadsAsNone)
{
    BuiltMovie movie = plainMovie();
    movie.duration = 0xFFFFFFFFU;
    EXPECT_EQ(readFrom(builtFile(movie)).duration, 0U);
}

TEST(MovieAtomsTest, readsTrackHeadersOfBothVersions)
{
    for (const std::uint8_t version : {std::uint8_t(0), std::uint8_t(1)}) {
        BuiltMovie movie = plainMovie();
        BuiltTrack& track = movie.tracks.front();
        track.headerVersion = version;
        track.id = 7;
        track.duration = 1234;
        track.trackWidth = 1024.5;
        track.matrix[0] = 0;
        track.matrix[1] = 65536;
        track.matrix[2] = -65536;
        track.matrix[3] = 0;
        track.matrix[4] = 576 * 65536;
        const MovieAtoms atoms = readFrom(builtFile(movie));
        ASSERT_EQ(atoms.tracks.size(), 1U);
        const TrackAtoms& read = atoms.tracks.front();
        EXPECT_EQ(read.id, 7U);
        EXPECT_EQ(read.flags, 3U);
        EXPECT_EQ(read.duration, 1234U);
        EXPECT_EQ(read.size.width, 1024U * 65536U + 32768U);
        EXPECT_EQ(read.matrix.b, 65536);
        EXPECT_EQ(read.matrix.c, -65536);
        EXPECT_EQ(read.matrix.tx, 576 * 65536);
        EXPECT_EQ(read.mediaType, "vide");
        EXPECT_EQ(read.mediaTimeScale, 600U);
    }
}

TEST(MovieAtomsTest, readsApertures)
{
    BuiltMovie movie = plainMovie();
    movie.tracks.front().apertures = {{"clef", {1024, 576}}, {"prof", {1050, 576}}, {"enof", {720, 576}}};
    movie.tracks.front().extensions = pixelAspect(64, 45);
    const Bytes clean = cleanAperture(702, 570);
    movie.tracks.front().extensions.insert(movie.tracks.front().extensions.end(), clean.begin(), clean.end());
    const MovieAtoms atoms = readFrom(builtFile(movie));
    const TrackAtoms& track = atoms.tracks.front();
    ASSERT_TRUE(track.clef && track.prof && track.enof);
    EXPECT_EQ(track.clef->width, 1024U << 16);
    EXPECT_EQ(track.prof->width, 1050U << 16);
    EXPECT_EQ(track.enof->height, 576U << 16);
    EXPECT_EQ(track.description.pixelAspectH, 64U);
    EXPECT_EQ(track.description.pixelAspectV, 45U);
    EXPECT_EQ(track.description.cleanWidth, 702);
    EXPECT_EQ(track.description.width, 720);
    EXPECT_EQ(track.description.format, atomType("jpeg"));
}

TEST(MovieAtomsTest, anApertureOfNothingDoesNotCount)
{
    BuiltMovie movie = plainMovie();
    movie.tracks.front().apertures = {{"clef", {0, 576}}};
    movie.tracks.front().extensions = cleanAperture(0, 0);
    const MovieAtoms atoms = readFrom(builtFile(movie));
    EXPECT_FALSE(atoms.tracks.front().clef.has_value());
    EXPECT_EQ(atoms.tracks.front().description.cleanWidth, 0);
}

TEST(MovieAtomsTest, readsEditListsOfBothVersions)
{
    for (const bool isLong : {false, true}) {
        BuiltMovie movie = plainMovie();
        movie.tracks.front().longEdits = isLong;
        movie.tracks.front().edits = {{1200, -1}, {3000, 300}, {600, 0, 0}};
        const MovieAtoms atoms = readFrom(builtFile(movie));
        const TrackAtoms& track = atoms.tracks.front();
        ASSERT_EQ(track.edits.size(), 3U);
        EXPECT_EQ(track.edits[0].mediaTime, -1);
        EXPECT_EQ(track.edits[1].duration, 3000U);
        EXPECT_EQ(track.edits[1].mediaTime, 300);
        EXPECT_EQ(track.edits[2].rate, 0);
    }
}

TEST(MovieAtomsTest, readsSoundDescriptionsOfEveryVersion)
{
    BuiltMovie movie;
    Bytes version1 = soundFields(1, 2, 16, 22254.5454);
    for (const std::uint32_t field : {64U, 34U, 68U, 2U}) {
        put32(version1, field);
    }
    Bytes version2 = soundFields(2, 3, 16, 1);
    put32(version2, 72);
    put64(version2, std::bit_cast<std::uint64_t>(96000.0));
    for (const std::uint32_t field : {6U, 0x7F000000U, 24U, 0U, 18U, 1U}) {
        put32(version2, field);
    }
    movie.tracks = {soundTrack("sowt", soundFields(0, 2, 16, 44100)), soundTrack("ima4", version1),
                    soundTrack("lpcm", version2)};
    const MovieAtoms atoms = readFrom(builtFile(movie));
    ASSERT_EQ(atoms.tracks.size(), 3U);
    const DescriptionAtom& plain = atoms.tracks[0].description;
    EXPECT_EQ(plain.channels, 2);
    EXPECT_EQ(plain.sampleSize, 16);
    EXPECT_EQ(plain.sampleRateFixed >> 16, 44100U);
    EXPECT_EQ(packedSoundBytes(plain, 1, 100), 400U);
    const DescriptionAtom& packed = atoms.tracks[1].description;
    EXPECT_EQ(packed.samplesPerPacket, 64U);
    EXPECT_EQ(packed.bytesPerFrame, 68U);
    EXPECT_EQ(packed.sampleRateFixed >> 16, 22254U);
    EXPECT_EQ(packedSoundBytes(packed, 1, 640), 680U);
    const DescriptionAtom& high = atoms.tracks[2].description;
    EXPECT_EQ(high.channels, 6) << "the old fields hold dummies";
    EXPECT_EQ(high.sampleSize, 24);
    EXPECT_EQ(high.sampleRateFixed >> 16, 96000U);
    EXPECT_EQ(packedSoundBytes(high, 1, 10), 180U);
}

TEST(MovieAtomsTest, findsTheSaveMarkAndItsPlace)
{
    BuiltMovie movie = plainMovie();
    EXPECT_FALSE(readFrom(builtFile(movie)).nsav.has_value());
    for (const bool longSizes : {false, true}) {
        movie.nsav = 1;
        movie.longSizes = longSizes;
        const Bytes file = builtFile(movie);
        const MovieAtoms atoms = readFrom(file);
        EXPECT_EQ(atoms.nsav, 1U);
        ASSERT_EQ(atoms.nsavValueOffsets.size(), 1U);
        const auto offset = static_cast<std::size_t>(atoms.nsavValueOffsets.front());
        EXPECT_EQ(Bytes(file.begin() + static_cast<std::ptrdiff_t>(offset) - 4,
                        file.begin() + static_cast<std::ptrdiff_t>(offset) + 4),
                  (Bytes{'n', 's', 'a', 'v', 0, 0, 0, 1}));
    }
}

TEST(MovieAtomsTest, tellsFragmentsCompressionAndForeignMedia)
{
    BuiltMovie movie = plainMovie();
    movie.tracks.front().external = true;
    EXPECT_FALSE(readFrom(builtFile(movie)).tracks.front().selfContained);
    const MovieAtoms packed = readFrom(atomBytes("moov", atomBytes("cmov", Bytes(20, 1))));
    EXPECT_TRUE(packed.found);
    EXPECT_TRUE(packed.compressed);
    Bytes fragments = builtFile(plainMovie());
    const Bytes fragment = atomBytes("moof", Bytes(8, 0));
    fragments.insert(fragments.end(), fragment.begin(), fragment.end());
    EXPECT_TRUE(readFrom(fragments).fragmented);
}

TEST(MovieAtomsTest, everyTruncationIsNoticedAndSurvived)
{
    BuiltMovie movie = plainMovie();
    movie.tracks.push_back(soundTrack("sowt", soundFields(0, 2, 16, 44100)));
    movie.nsav = 1;
    const Bytes file = builtFile(movie);
    for (std::size_t size = 0; size < file.size(); ++size) {
        const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        const MovieAtoms atoms = readFrom(cut);
        EXPECT_FALSE(atoms.found && !atoms.damaged) << size;
    }
}

TEST(MovieAtomsTest, everyByteMayBeWrong)
{
    BuiltMovie movie = plainMovie();
    movie.tracks.front().edits = {{1200, -1}, {3000, 300}};
    movie.tracks.push_back(soundTrack("sowt", soundFields(0, 2, 16, 44100)));
    const Bytes file = builtFile(movie);
    for (std::size_t index = 0; index < file.size(); ++index) {
        for (const std::uint8_t value : {std::uint8_t(0), std::uint8_t(0x7F), std::uint8_t(0xFF)}) {
            Bytes wrong = file;
            wrong[index] = value;
            const MovieAtoms atoms = readFrom(wrong);
            for (const TrackAtoms& track : atoms.tracks) {
                const auto table = readSampleTable(track, wrong.size());
                EXPECT_LE(table ? table->samples.size() : 0, wrong.size());
            }
        }
    }
}

TEST(SampleTableTest, readsWhereSamplesLie)
{
    const Bytes file = builtFile(plainMovie());
    const MovieAtoms atoms = readFrom(file);
    const std::optional<SampleTable> table = readSampleTable(atoms.tracks.front(), file.size());
    ASSERT_TRUE(table.has_value());
    EXPECT_FALSE(table->packed);
    ASSERT_EQ(table->samples.size(), 10U);
    EXPECT_EQ(table->samples[1].offset, table->samples[0].offset + 16);
    EXPECT_EQ(table->samples[9].duration, 600U);
    EXPECT_TRUE(table->samples[9].sync) << "without a table every sample is a key";
}

TEST(SampleTableTest, uncompressedSoundKeepsItsChunksOnly)
{
    BuiltMovie movie;
    BuiltTrack sound = soundTrack("sowt", soundFields(0, 2, 16, 44100));
    sound.samples = 400;
    sound.sampleDuration = 1;
    sound.sampleSize = 4;
    movie.tracks = {sound};
    const Bytes file = builtFile(movie);
    const MovieAtoms atoms = readFrom(file);
    const std::optional<SampleTable> table = readSampleTable(atoms.tracks.front(), file.size());
    ASSERT_TRUE(table.has_value());
    EXPECT_TRUE(table->packed);
    ASSERT_EQ(table->chunks.size(), 1U);
    EXPECT_EQ(table->chunks.front().size, 1600U);
}

TEST(SampleTableTest, mediaBehindTheEndOfTheFileAreRefused)
{
    const Bytes file = builtFile(plainMovie());
    const MovieAtoms atoms = readFrom(file);
    EXPECT_FALSE(readSampleTable(atoms.tracks.front(), 100).has_value());
}

} // namespace tavrix::test
