// SPDX-License-Identifier: GPL-3.0-or-later
// Movies with known atoms, opened through the installed media library.
#include "support/moviebuilder.h"

#include "base/bundle/bundle.h"
#include "fakemedialibrary.h"
#include "mediatools.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/aspectratios.h"
#include "quicktime/rules/framerate.h"
#include "quicktime/rules/movieedit.h"
#include "quicktime/rules/movieoffsets.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/trackinformation.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

namespace tavrix::test
{

namespace
{

class BuiltMovieTest : public testing::Test
{
protected:
    ~BuiltMovieTest() override
    {
        QTMOVIErelease();
        setTMPFOLDER(QString());
    }

    std::shared_ptr<Movie> open(const BuiltMovie& movie, const char* name = "a.mov")
    {
        const Bytes bytes = builtFile(movie);
        path_ = folder_.makeFile(
            text(name), QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
        QTMOVIErelease();
        EXPECT_TRUE(qtkitInstantiate(path_));
        return getQTMOVIE();
    }

    TempFolder folder_;
    QString path_;
};

// Raw pictures need no decoder to be recognised.
BuiltTrack picture()
{
    BuiltTrack track;
    track.format = "raw ";
    return track;
}

BuiltTrack sound(std::uint32_t id, std::vector<BuiltEdit> edits)
{
    BuiltTrack track;
    track.id = id;
    track.mediaType = "soun";
    track.format = "sowt";
    track.soundFields = soundFields(0, 2, 16, 44100);
    track.mediaScale = 44100;
    track.mediaDuration = 400;
    track.samples = 400;
    track.sampleDuration = 1;
    track.sampleSize = 4;
    track.edits = std::move(edits);
    return track;
}

bool isSize(const MediaSize& size, double width, double height)
{
    return size.width == width && size.height == height;
}

} // namespace

TEST_F(BuiltMovieTest, timesComeFromTheMovieHeader)
{
    BuiltMovie movie;
    movie.timeScale = 29970;
    movie.duration = 299700;
    movie.tracks = {picture()};
    movie.tracks.front().duration = 299700;
    const std::shared_ptr<Movie> opened = open(movie);
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->duration().timeScale, 29970);
    EXPECT_EQ(opened->duration().timeValue, 299700);
    EXPECT_DOUBLE_EQ(movieDuration(*opened), 10.0);
    EXPECT_FLOAT_EQ(movieFps(*opened, 0), 29.97F) << "the time scale names the rate";
}

TEST_F(BuiltMovieTest, aperturesChooseTheDisplaySize)
{
    BuiltMovie movie;
    movie.tracks = {picture()};
    movie.tracks.front().apertures = {{"clef", {1024, 576}}, {"prof", {1048, 576}}, {"enof", {720, 576}}};
    const std::shared_ptr<Movie> opened = open(movie);
    const std::shared_ptr<Track> track = opened->tracks().first();
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::Clean), 1024, 576));
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::Production), 1048, 576));
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::EncodedPixels), 720, 576));
    EXPECT_TRUE(isSize(opened->currentSize(), 1024, 576));
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.value(QStringLiteral("v0_dar")), QStringLiteral("16:9"));
    EXPECT_EQ(record.value(QStringLiteral("v0_par")), QStringLiteral("64:45"));
    EXPECT_EQ(record.value(QStringLiteral("v0_cropright")), 0);
    EXPECT_EQ(record.value(QStringLiteral("v0_codec")), QStringLiteral("raw "));
}

TEST_F(BuiltMovieTest, withoutAperturesPixelAspectAndCleanApertureCount)
{
    BuiltMovie movie;
    movie.tracks = {picture()};
    movie.tracks.front().extensions = pixelAspect(16, 15);
    std::shared_ptr<Track> track = open(movie)->tracks().first();
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::Clean), 768, 576));
    EXPECT_TRUE(isSize(track->dimensions(), 720, 576)) << "the track itself keeps the size of its header";
    const Bytes clean = cleanAperture(600, 480);
    movie.tracks.front().extensions.insert(movie.tracks.front().extensions.end(), clean.begin(), clean.end());
    track = open(movie, "b.mov")->tracks().first();
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::Clean), 640, 480));
    track->removeApertureModeDimensions();
    EXPECT_TRUE(isSize(track->apertureModeDimensionsForMode(ApertureMode::Clean), 720, 576));
}

TEST_F(BuiltMovieTest, matricesMoveScaleAndTurnTheBounds)
{
    BuiltMovie movie;
    movie.tracks = {picture()};
    BuiltTrack& track = movie.tracks.front();
    const std::int32_t shifted[6] = {32768, 0, 0, 32768, 10 * 65536, 20 * 65536};
    std::copy(std::begin(shifted), std::end(shifted), std::begin(track.matrix));
    std::shared_ptr<Movie> opened = open(movie);
    MediaRect bounds = opened->tracks().first()->boundsRect();
    EXPECT_EQ(bounds.left, 10);
    EXPECT_EQ(bounds.top, 20);
    EXPECT_EQ(bounds.right, 370);
    EXPECT_EQ(bounds.bottom, 308);
    EXPECT_TRUE(isSize(opened->naturalSize(), 360, 288));
    const std::int32_t turned[6] = {0, 65536, -65536, 0, 576 * 65536, 0};
    std::copy(std::begin(turned), std::end(turned), std::begin(track.matrix));
    movie.matrix[0] = 2 * 65536;
    opened = open(movie, "b.mov");
    bounds = opened->tracks().first()->boundsRect();
    EXPECT_EQ(bounds.left, 0);
    EXPECT_EQ(bounds.right, 1152);
    EXPECT_EQ(bounds.bottom, 720);
    EXPECT_TRUE(isSize(opened->naturalSize(), 576, 720));
    EXPECT_TRUE(isSize(opened->currentSize(), 1152, 720)) << "the movie's own matrix scales what is shown";
}

TEST_F(BuiltMovieTest, severalSoundTracksGiveTheEarliestStart)
{
    BuiltMovie movie;
    movie.tracks = {picture(), sound(2, {{1200, -1}, {5, 0}}), sound(3, {{900, -1}, {5, 0}})};
    open(movie);
    EXPECT_EQ(qtOffsetMs(path_).value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(900));
    const MediaInfoRecord record = qtDico(path_);
    EXPECT_EQ(record.value(QStringLiteral("a0_channels")), 2);
    EXPECT_EQ(record.value(QStringLiteral("a1_rate")), 44100);
    EXPECT_EQ(record.value(QStringLiteral("a1_codec")), QStringLiteral("pcm_s16le"));
}

TEST_F(BuiltMovieTest, emptyEditsMoveTheRange)
{
    BuiltMovie movie;
    movie.tracks = {picture()};
    movie.tracks.front().edits = {{600, -1}, {3000, 1200}};
    const std::shared_ptr<Movie> opened = open(movie);
    const MediaTimeRange range = opened->tracks().first()->range();
    EXPECT_EQ(range.time.timeValue, 600);
    EXPECT_EQ(range.duration.timeValue, 3000);
    EXPECT_EQ(opened->nextInterestingTime(0x4010, fourCharCode("vide"), 0), 600);
    EXPECT_EQ(opened->nextInterestingTime(0x10, fourCharCode("vide"), 600), 1200);
    EXPECT_EQ(opened->nextInterestingTime(0x10, fourCharCode("vide"), 3000), -1);
}

TEST_F(BuiltMovieTest, otherTracksAreNamedByTheirKind)
{
    BuiltMovie movie;
    BuiltTrack other = picture();
    other.id = 2;
    other.mediaType = "text";
    other.format = "text";
    movie.tracks = {picture(), other};
    open(movie);
    EXPECT_EQ(infosQtMovieTrack(path_).value(QStringLiteral("toto1_mediaAttributes")), QStringLiteral("text"));
}

TEST_F(BuiltMovieTest, sixtyFourBitSizesReadTheSame)
{
    BuiltMovie movie;
    movie.longSizes = true;
    movie.tracks = {picture()};
    movie.tracks.front().headerVersion = 1;
    EXPECT_EQ(open(movie)->duration().timeValue, 6000);
    EXPECT_EQ(getQTMOVIE()->tracks().size(), 1);
}

TEST_F(BuiltMovieTest, aMovieThatForbidsSavingIsNotWritten)
{
    BuiltMovie movie;
    movie.nsav = 1;
    movie.tracks = {picture()};
    const std::shared_ptr<Movie> opened = open(movie);
    EXPECT_FALSE(exportMovie(*opened, folder_.path(QStringLiteral("copy.mov")), 0));
    EXPECT_FALSE(itemExists(folder_.path(QStringLiteral("copy.mov"))));
    movie.nsav = 0;
    EXPECT_TRUE(exportMovie(*open(movie, "b.mov"), folder_.path(QStringLiteral("copy.mov")), 0));
}

// Their offsets would be taken for places in the movie file itself.
TEST_F(BuiltMovieTest, mediaOfOtherFilesAreNotReplacedByBytesOfThisOne)
{
    BuiltMovie movie;
    movie.tracks = {picture(), sound(2, {})};
    movie.tracks.back().external = true;
    const std::shared_ptr<Movie> opened = open(movie);
    const QString copy = folder_.path(QStringLiteral("copy.mov"));
    for (const int mode : {0, 1, -1, -2, 5}) {
        EXPECT_FALSE(exportMovie(*opened, copy, mode)) << mode;
        EXPECT_FALSE(itemExists(copy)) << mode;
    }
}

TEST_F(BuiltMovieTest, theMarkIsClearedInAFileNamedMov)
{
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    if (!itemExists(toolPath(QStringLiteral("atompatch")))) {
        GTEST_SKIP() << "the tool is not built";
    }
    setTMPFOLDER(folder_.path() + QLatin1Char('/'));
    BuiltMovie movie;
    movie.nsav = 1;
    movie.tracks = {picture()};
    open(movie, "mov");
    const LogCapture log;
    EXPECT_EQ(infosQtMovieTrack(path_).value(QStringLiteral("w_nsav")), false);
    EXPECT_TRUE(log.contains(QStringLiteral("qt>infosQtMovieTr:-( nsav")));
    movie.nsav = 0;
    const Bytes cleared = builtFile(movie);
    EXPECT_EQ(readBytes(path_),
              QByteArray(reinterpret_cast<const char*>(cleared.data()), static_cast<qsizetype>(cleared.size())));
}

TEST_F(BuiltMovieTest, aRewrittenMovieKeepsEveryByteOfItsMedia)
{
    BuiltMovie movie;
    movie.tracks = {picture(), sound(2, {})};
    movie.tracks.front().samples = 10;
    const std::shared_ptr<Movie> opened = open(movie);
    movieEditable(*opened);
    opened->deleteSegment(QTMakeTimeRange(QTMakeTime(0, 600), QTMakeTime(1200, 600)));
    for (const int mode : {-1, 5}) {
        const QString copy = folder_.path(QStringLiteral("copy%1.mov").arg(mode));
        ASSERT_TRUE(exportMovie(*opened, copy, mode));
        const QByteArray bytes = readBytes(copy).value_or(QByteArray());
        const auto header = bytes.indexOf("moov");
        const auto data = bytes.indexOf("mdat");
        EXPECT_EQ(header < data, mode == -1) << "a flattened movie has its header first";
        EXPECT_EQ(static_cast<unsigned char>(bytes[data + 4]), 32) << "the third picture, 16 bytes each";
        QTMOVIErelease();
        ASSERT_TRUE(qtkitInstantiate(copy));
        EXPECT_EQ(getQTMOVIE()->duration().timeValue, 4800);
        EXPECT_EQ(getQTMOVIE()->nextInterestingTime(0x10, fourCharCode("vide"), 0), 600);
    }
}

} // namespace tavrix::test
