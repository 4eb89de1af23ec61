// SPDX-License-Identifier: GPL-3.0-or-later
// What a player shows of a trimmed clip is what comes out, in copies too.
#include "media/headerchange.h"
#include "pipeline/clips.h"
#include "pipeline/convert.h"
#include "pipeline/numberedclip.h"
#include "pipeline/words.h"
#include "support/temphome.h"
#include "sys/descriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <ostream>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// A stretch of the media, in pictures; -1 as the first is time in which nothing is shown.
struct Piece {
    int first;
    int count;
};

struct TrimRow {
    const char* name;
    std::vector<Piece> pieces;
    const char* codec = "-c:v libx264 -preset ultrafast -bf 2 -g 12 -qp 20 -pix_fmt yuv420p";
};

std::ostream& operator<<(std::ostream& out, const TrimRow& row)
{
    return out << row.name;
}

constexpr int rate = 25;
constexpr int pictures = 60;

const TrimRow rows[] = {
    {"whole", {{0, 60}}},
    {"start", {{17, 43}}},
    {"end", {{0, 31}}},
    {"lastPicture", {{0, 59}}},
    {"both", {{17, 20}}},
    {"twoPieces", {{5, 13}, {31, 20}}},
    {"threePieces", {{3, 10}, {20, 7}, {40, 11}}},
    {"repeated", {{10, 15}, {10, 15}}},
    {"turnedRound", {{40, 12}, {8, 12}}},
    {"motionJpegEnd", {{0, 31}}, "-c:v mjpeg -q:v 3 -pix_fmt yuvj420p"},
    {"motionJpegPieces", {{5, 13}, {31, 20}}, "-c:v mjpeg -q:v 3 -pix_fmt yuvj420p"},
};

// Gives every track of the movie that list of edits.
bool trimMovie(const QString& path, const std::vector<Piece>& pieces)
{
    const Descriptor file(open(path.toUtf8().constData(), O_RDWR | O_CLOEXEC));
    const auto bytes = readBytes(path);
    if (file.get() < 0 || !bytes) {
        return false;
    }
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), std::uint64_t(bytes->size()));
    HeaderChange change;
    change.movieScale = 1000;
    for (std::size_t track = 0; track < movie.tracks.size(); ++track) {
        const TrackAtoms& atoms = movie.tracks[track];
        // Where the first picture or sound lies in its media.
        const std::int64_t origin = atoms.edits.empty() ? 0 : atoms.edits.back().mediaTime;
        TrackEdits edits;
        edits.track = track;
        for (const Piece& piece : pieces) {
            EditEntry entry;
            entry.duration = std::uint64_t(piece.count * 1000 / rate);
            entry.mediaTime = origin + std::int64_t(piece.first) * atoms.mediaTimeScale / rate;
            edits.entries.push_back(entry);
        }
        change.edits.push_back(edits);
    }
    return changeMovieHeader(file.get(), change).hasValue();
}

class Trim : public ::testing::TestWithParam<TrimRow>
{
protected:
    TempFolder folder;
};

std::vector<int> numbersOf(const std::vector<ShownPicture>& shown)
{
    std::vector<int> numbers;
    for (const ShownPicture& picture : shown) {
        numbers.push_back(picture.number);
    }
    return numbers;
}

TEST_P(Trim, EveryFormatShowsThePicturesThatAPlayerShows)
{
    const TrimRow& row = GetParam();
    NumberedClip clip;
    clip.pictures = pictures;
    clip.soundFrom = 0;
    clip.soundTo = 10;
    clip.codecs = words(row.codec) << words("-c:a pcm_s16le -f mov");
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    ASSERT_TRUE(trimMovie(source, row.pieces));
    std::vector<int> expected;
    for (const Piece& piece : row.pieces) {
        for (int number = piece.first; number < piece.first + piece.count; ++number) {
            expected.push_back(number);
        }
    }
    const std::vector<ShownPicture> played = shownPictures(source);
    ASSERT_EQ(numbersOf(played), expected) << "the clip itself";
    for (const int format : {0, 1, 2, 3, 4, 5}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const std::vector<ShownPicture> shown = shownPictures(converted.output);
        EXPECT_EQ(numbersOf(shown), expected) << "format " << format;
        for (std::size_t i = 0; i < shown.size(); ++i) {
            // Libavformat reads the pieces of a list a picture early; in a copy it does so again.
            const bool copy = format == 2 || format == 3;
            const double time = copy ? played.at(std::min(i, played.size() - 1)).time : double(i) / rate;
            EXPECT_NEAR(shown[i].time, time, 0.002) << "format " << format << " picture " << i;
        }
        const ShownSound sound = shownSound(converted.output);
        EXPECT_NEAR(sound.duration(), double(expected.size()) / rate, 0.06) << "format " << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Edits, Trim, ::testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CopiedEnd, NothingOfACutEndIsLeftInTheFile)
{
    TempFolder folder;
    NumberedClip clip;
    clip.pictures = pictures;
    clip.codecs = words(rows[0].codec) << words("-c:a pcm_s16le -f mov");
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    ASSERT_TRUE(trimMovie(source, {{0, 20}}));
    const Converted converted = convertClip(source, folder.path(), 3);
    ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
    const QJsonObject video = streamOf(probed(converted.output), text("video"));
    // A few pictures more are needed to decode the last ones.
    EXPECT_LE(video.value(text("nb_frames")).toString().toInt(), 24);
}

} // namespace
