// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/moviedates.h"

#include "media/clipdates.h"
#include "media/moviewriter.h"
#include "support/qtprinters.h"
#include "support_media/builtdates.h"
#include "support_media/cameramessage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavrix::test
{

using namespace built;

namespace
{

struct HeaderRow {
    const char* name;
    Bytes atom;
    std::optional<ClockTime> clock;
    double length;
};

struct CreationRow {
    const char* name;
    Bytes moov;
    std::optional<WrittenDate> date;
};

struct WriterRow {
    const char* name;
    Bytes moov;
    std::uint32_t brand;
    HeaderWriter writer;
};

constexpr ClockTime recorded{2011, 9, 25, 10, 10, 7};
const std::uint64_t recorded1904 = static_cast<std::uint64_t>(secondsOfClock(recorded)) + from1904To1970;
const WrittenDate withZone{{2011, 9, 25, 12, 9, 54}, 120};
const char* const zoned = "2011-09-25T12:09:54+0200";

Bytes keys(const std::string& name, const std::string& value)
{
    return keysAtom({{"com.apple.quicktime.title", "Title"}, {name, value}});
}

Bytes userData(const std::vector<Bytes>& atoms)
{
    return atomBytes("udta", joined(atoms));
}

// Two zeroes stand where the version and flags of MP4's form do.
Bytes tagsOfMp4(const std::string& type, const std::string& value)
{
    const Bytes items = atomBytes("ilst", atomBytes(type, valueAtom(value)));
    return userData({atomBytes("meta", joined({Bytes(4, 0), atomBytes("hdlr", Bytes(25, 0)), items}))});
}

// A movie of one H.264 track whose first sample begins with the camera's message.
Bytes movieOfCamera(const ClockTime& clock, std::uint8_t lengthSize)
{
    const Bytes unit = supplementalUnit(cameraMessage(clock));
    BuiltTrack track;
    track.format = "avc1";
    track.extensions =
        atomBytes("avcC", {1, 77, 0, 30, static_cast<std::uint8_t>(0xFC | (lengthSize - 1)), 0xE1, 0, 0});
    track.samples = 2;
    track.sampleSize = 200;
    BuiltMovie movie;
    movie.tracks.push_back(track);
    Bytes file = builtFile(movie);
    const std::string mark = "mdat";
    const auto data = std::search(file.begin(), file.end(), mark.begin(), mark.end()) + 4;
    Bytes sample(lengthSize, 0);
    sample.back() = static_cast<std::uint8_t>(unit.size());
    sample.insert(sample.end(), unit.begin(), unit.end());
    std::copy(sample.begin(), sample.end(), data);
    return file;
}

ClipDates read(const Bytes& file)
{
    return clipDates(readAtOf(ByteView(file)), file.size());
}

} // namespace

class MovieHeaders : public testing::TestWithParam<HeaderRow>
{
};

TEST_P(MovieHeaders, TellTheTimeAndTheLength)
{
    const ClipDates dates = datesOfMovieAtom(GetParam().atom, 0);
    EXPECT_EQ(dates.movieHeader.has_value(), GetParam().clock.has_value());
    if (dates.movieHeader && GetParam().clock) {
        EXPECT_EQ(clockOfSeconds(*dates.movieHeader), *GetParam().clock);
    }
    EXPECT_EQ(dates.length, GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, MovieHeaders,
    testing::Values(HeaderRow{"Short", movieHeaderAtom(recorded1904, 600, 2094), recorded, 3.49},
                    HeaderRow{"Wide", movieHeaderAtom(recorded1904, 1000, 3490, true), recorded, 3.49},
                    HeaderRow{"Zero", movieHeaderAtom(0, 600, 600), {}, 1},
                    HeaderRow{"In1904", movieHeaderAtom(86400, 600, 600), {}, 1},
                    HeaderRow{"WideNonsense", movieHeaderAtom(UINT64_MAX, 600, 600, true), {}, 1},
                    HeaderRow{"NoScale", movieHeaderAtom(recorded1904, 0, 600), recorded, 0},
                    HeaderRow{"LengthNotKnown", movieHeaderAtom(recorded1904, 600, UINT32_MAX), recorded, 0},
                    HeaderRow{"CutOff", atomBytes("mvhd", Bytes(16, 0xAA)), {}, 0}, HeaderRow{"Missing", {}, {}, 0}),
    rowName<HeaderRow>);

class CreationDates : public testing::TestWithParam<CreationRow>
{
};

TEST_P(CreationDates, AreReadFromKeysAndUserData)
{
    EXPECT_EQ(datesOfMovieAtom(GetParam().moov, 0).creationDate, GetParam().date);
}

INSTANTIATE_TEST_SUITE_P(
    Places, CreationDates,
    testing::Values(CreationRow{"Key", keys("com.apple.quicktime.creationdate", zoned), withZone},
                    CreationRow{"KeyInUserData", userData({keys("com.apple.quicktime.creationdate", zoned)}), withZone},
                    CreationRow{"KeyBeforeUserData",
                                joined({userData({quickTimeText("\xA9"
                                                                "day",
                                                                "2013-01-01T00:00:00+0000")}),
                                        keys("com.apple.quicktime.creationdate", zoned)}),
                                withZone},
                    CreationRow{"QuickTimesText",
                                userData({quickTimeText("\xA9"
                                                        "day",
                                                        zoned)}),
                                withZone},
                    CreationRow{"Tag",
                                tagsOfMp4("\xA9"
                                          "day",
                                          zoned),
                                withZone},
                    CreationRow{"MobileDate", userData({mobileText("date", zoned)}), withZone},
                    CreationRow{"PlainDate", userData({atomBytes("date", bytesOf(zoned))}), withZone},
                    CreationRow{"UnreadableKeyThenText",
                                joined({keys("com.apple.quicktime.creationdate", "yesterday"),
                                        userData({quickTimeText("\xA9"
                                                                "day",
                                                                zoned)})}),
                                withZone},
                    CreationRow{"YearAlone",
                                userData({quickTimeText("\xA9"
                                                        "day",
                                                        "2011")}),
                                {}},
                    CreationRow{"OtherKey", keys("com.apple.quicktime.releasedate", zoned), {}},
                    CreationRow{"LengthBeyondTheAtom",
                                userData({atomBytes("\xA9"
                                                    "day",
                                                    {0xFF, 0xFF, 0, 0, '2', '0'})}),
                                {}},
                    CreationRow{"ValueCutOff", userData({atomBytes("meta", {0, 0, 0, 0, 0, 0, 0, 9})}), {}},
                    CreationRow{"ManyKeysNamed", atomBytes("meta", atomBytes("keys", Bytes(8, 0xFF))), {}}),
    rowName<CreationRow>);

class HeaderWriters : public testing::TestWithParam<WriterRow>
{
};

TEST_P(HeaderWriters, AreKnown)
{
    EXPECT_EQ(headerWriter(movieWords(GetParam().moov), GetParam().brand), GetParam().writer);
}

INSTANTIATE_TEST_SUITE_P(
    Movies, HeaderWriters,
    testing::Values(
        WriterRow{"Unknown", {}, 0, HeaderWriter::Camera},
        WriterRow{"AppleByItsKey", keys("com.apple.quicktime.make", "Apple"), 0, HeaderWriter::Phone},
        WriterRow{"AppleByItsText",
                  userData({quickTimeText("\xA9"
                                          "mak",
                                          "Apple")}),
                  0, HeaderWriter::Phone},
        WriterRow{"Model",
                  userData({quickTimeText("\xA9"
                                          "mod",
                                          "iPhone 4")}),
                  0, HeaderWriter::Phone},
        WriterRow{"MobileMaker", userData({mobileText("manu", "NOKIA")}), 0, HeaderWriter::Phone},
        WriterRow{"MobileModel", userData({mobileText("modl", "SM-G950F")}), 0, HeaderWriter::Phone},
        WriterRow{"AndroidByItsKeys", keys("com.android.version", "10"), atomType("mp42"), HeaderWriter::Phone},
        WriterRow{"AndroidByItsTracks", trackOfHandler("VideoHandle", false), atomType("isom"), HeaderWriter::Phone},
        WriterRow{"ThirdGeneration", {}, atomType("3gp5"), HeaderWriter::Phone},
        WriterRow{"CanonMov",
                  userData({quickTimeText("\xA9"
                                          "mak",
                                          "Canon")}),
                  atomType("qt  "), HeaderWriter::Camera},
        WriterRow{"SamsungCamera",
                  userData({quickTimeText("\xA9"
                                          "mak",
                                          "SAMSUNG"),
                            quickTimeText("\xA9"
                                          "mod",
                                          "NX300")}),
                  atomType("mp42"), HeaderWriter::Camera},
        WriterRow{"SonyCamera",
                  userData({quickTimeText("\xA9"
                                          "mak",
                                          "Sony")}),
                  atomType("MSNV"), HeaderWriter::Camera},
        WriterRow{"FfmpegsTrackIsNotAndroids", trackOfHandler("VideoHandler", false), 0, HeaderWriter::Camera},
        WriterRow{"Ffmpeg",
                  tagsOfMp4("\xA9"
                            "too",
                            "Lavf59.27.100"),
                  atomType("isom"), HeaderWriter::Program},
        WriterRow{"HandBrake",
                  tagsOfMp4("\xA9"
                            "too",
                            "HandBrake 1.6.1"),
                  atomType("mp42"), HeaderWriter::Program},
        WriterRow{"QuickTimeX", trackOfHandler("Core Media Video", true), atomType("qt  "), HeaderWriter::Program}),
    rowName<WriterRow>);

TEST(MovieClipDates, ReadTheCamerasDateBesideThePictures)
{
    for (const std::uint8_t lengthSize : Bytes{1, 2, 4}) {
        EXPECT_EQ(read(movieOfCamera(recorded, lengthSize)).pictureStream, recorded) << int(lengthSize);
    }
    BuiltMovie motionJpeg;
    motionJpeg.tracks.emplace_back();
    EXPECT_FALSE(read(builtFile(motionJpeg)).pictureStream);
}

TEST(MovieClipDates, KnowTheBrand)
{
    const Bytes type = atomBytes("ftyp", joined({bytesOf("3gp4"), Bytes(4, 0), bytesOf("3gp4")}));
    const Bytes movie = atomBytes("moov", movieHeaderAtom(recorded1904, 600, 600));
    const ClipDates dates = read(joined({type, movie}));
    EXPECT_EQ(dates.writer, HeaderWriter::Phone);
    EXPECT_EQ(dates.movieHeader, secondsOfClock(recorded));
}

TEST(MovieClipDates, OfAMovieCutAnywhereDoNoHarm)
{
    const Bytes file = joined({movieOfCamera(recorded, 4), atomBytes("moov", movieHeaderAtom(recorded1904, 600, 600))});
    for (std::size_t length = 0; length < file.size(); ++length) {
        const ClipDates dates = read(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_TRUE(!dates.pictureStream || *dates.pictureStream == recorded);
    }
}

} // namespace tavrix::test
