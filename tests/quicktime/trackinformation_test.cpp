// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/trackinformation.h"

#include "base/store/settings.h"
#include "fakemedialibrary.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/moviefiles.h"
#include "quicktime/rules/movieoffsets.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

namespace tavrix::test
{

namespace
{

struct DisplayRow {
    const char* name;
    PictureSizes sizes;
    float movieRatio;
    int width;
    int height;
};

class ChosenDisplaySizeTest : public testing::TestWithParam<DisplayRow>
{
};

class TrackInformationTest : public testing::Test
{
protected:
    TrackInformationTest()
    {
        setTMPFOLDER(folder_.path() + QLatin1Char('/'));
        path_ = folder_.makeFile(QStringLiteral("clip.mov"));
        movie_ = library_.addMovie(path_);
        movie_->length = QTMakeTime(6059, 600);
        movie_->current = {1920, 1080};
        for (qint64 frame = 0; frame < 250; ++frame) {
            movie_->sampleTimes.append(frame * 24);
        }
    }
    ~TrackInformationTest() override { setTMPFOLDER(QString()); }

    std::shared_ptr<FakeTrack> addVideo()
    {
        std::shared_ptr<FakeTrack> track = movie_->addTrack(QStringLiteral("vide"));
        track->encoded = {1440, 1080};
        track->clean = {1920, 1080};
        track->size = {1920, 1080};
        track->bounds = {0, 0, 1080, 1920};
        track->description.dataFormat = fourCharCode("avc1");
        track->trackRange = QTMakeTimeRange(QTMakeTime(0, 600), QTMakeTime(6000, 600));
        return track;
    }

    std::shared_ptr<FakeTrack> addSound(qint64 start, qint64 duration, qint32 scale)
    {
        std::shared_ptr<FakeTrack> track = movie_->addTrack(QStringLiteral("soun"));
        track->description = {false, fourCharCode("sowt"), 2, 16, quint64(48000) << 16};
        track->trackRange = QTMakeTimeRange(QTMakeTime(start, scale), QTMakeTime(duration, scale));
        return track;
    }

    TempFolder folder_;
    FakeLibrary library_;
    QString path_;
    std::shared_ptr<FakeMovie> movie_;
};

} // namespace

TEST_P(ChosenDisplaySizeTest, is)
{
    const PixelSize size = chosenDisplaySize(GetParam().sizes, GetParam().movieRatio);
    EXPECT_EQ(size.width, GetParam().width);
    EXPECT_EQ(size.height, GetParam().height);
}

// Sizes: encoded, clean, track.
INSTANTIATE_TEST_SUITE_P(
    Sizes, ChosenDisplaySizeTest,
    testing::Values(DisplayRow{"wideCleanOfNarrowPixels", {{1440, 1080}, {1920, 1080}, {1, 1}}, 1.7778F, 1920, 1080},
                    DisplayRow{"cleanFitsTheMovie", {{640, 480}, {640, 480}, {1, 1}}, 1.3333F, 640, 480},
                    DisplayRow{"standardCleanInAWideMovie", {{720, 576}, {768, 576}, {1024, 576}}, 1.7778F, 1024, 576},
                    DisplayRow{
                        "wideHeightIsIntegerArithmetic", {{720, 480}, {640, 480}, {854, 480}}, 1.7792F, 853, 480},
                    DisplayRow{"movieFitsTheEncoded", {{700, 480}, {700, 480}, {1, 1}}, 1.46F, 700, 480},
                    DisplayRow{"nothingFitsTakesTheTrack", {{720, 576}, {720, 576}, {800, 400}}, 2.0F, 800, 400},
                    DisplayRow{"exactly177CountsAsDifferent", {{177, 100}, {177, 100}, {9, 9}}, 2.0F, 177, 100},
                    DisplayRow{"notQuite177", {{1778, 1000}, {1778, 1000}, {9, 9}}, 2.0F, 9, 9},
                    DisplayRow{"unknownMovieSize", {{640, 480}, {640, 480}, {320, 240}}, 0.0F, 320, 240},
                    DisplayRow{"noSizesAtAll", {{0, 0}, {0, 0}, {0, 0}}, 0.0F, 0, 0}),
    rowName<DisplayRow>);

TEST_F(TrackInformationTest, describesMovieAndTracks)
{
    addVideo();
    addSound(0, 6000, 600);
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    const MediaInfoRecord expected{
        {QStringLiteral("w_duration"), 10},
        {QStringLiteral("w_width"), 1920},
        {QStringLiteral("w_height"), 1080},
        {QStringLiteral("w_dar"), QStringLiteral("16:9")},
        {QStringLiteral("v0_codec"), QStringLiteral("h264")},
        {QStringLiteral("v0_dar"), QStringLiteral("16:9")},
        {QStringLiteral("v0_par"), QStringLiteral("4:3")},
        {QStringLiteral("v0_width"), 1440},
        {QStringLiteral("v0_height"), 1080},
        {QStringLiteral("v0_croptop"), 0},
        {QStringLiteral("v0_cropbottom"), 0},
        {QStringLiteral("v0_cropleft"), 0},
        {QStringLiteral("v0_cropright"), 0},
        {QStringLiteral("v0_fps"), 25.0F},
        {QStringLiteral("a0_codec"), QStringLiteral("pcm_s16le")},
        {QStringLiteral("a0_channels"), 2},
        {QStringLiteral("a0_bits"), 16},
        {QStringLiteral("a0_rate"), 48000},
    };
    EXPECT_EQ(record, expected);
    EXPECT_EQ(record.value(QStringLiteral("v0_fps")).typeId(), int(QMetaType::Float));
}

TEST_F(TrackInformationTest, cropTakesTopAndLeftTwice)
{
    addVideo()->bounds = {10, 20, 1060, 1890};
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.value(QStringLiteral("v0_croptop")), 10);
    EXPECT_EQ(record.value(QStringLiteral("v0_cropbottom")), 1080 - 1060 - 10);
    EXPECT_EQ(record.value(QStringLiteral("v0_cropleft")), 20);
    EXPECT_EQ(record.value(QStringLiteral("v0_cropright")), 1920 - 1890 - 20);
}

TEST_F(TrackInformationTest, countsVideoAndSoundApartAndOthersByTheirPlace)
{
    addVideo();
    movie_->addTrack(QString());
    movie_->addTrack(QStringLiteral("twen"));
    addSound(0, 6000, 600);
    movie_->addTrack(QStringLiteral("tmcd"));
    addVideo()->type = QStringLiteral("MPEG");
    addSound(0, 6000, 600)->description.dataFormat = fourCharCode("twos");
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.value(QStringLiteral("toto4_mediaAttributes")), QStringLiteral("tmcd"));
    EXPECT_EQ(record.value(QStringLiteral("v1_codec")), QStringLiteral("h264"));
    EXPECT_EQ(record.value(QStringLiteral("a1_codec")), QStringLiteral("pcm_s16be"));
    EXPECT_FALSE(record.contains(QStringLiteral("toto2_mediaAttributes")));
    EXPECT_FALSE(record.contains(QStringLiteral("v2_width")));
    EXPECT_EQ(record.value(QStringLiteral("v0_fps")), record.value(QStringLiteral("v1_fps")));
}

TEST_F(TrackInformationTest, anUnreadableDescriptionWritesNoCodec)
{
    addVideo()->description.error = true;
    const std::shared_ptr<FakeTrack> sound = addSound(0, 6000, 600);
    sound->description.error = true;
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_FALSE(record.contains(QStringLiteral("v0_codec")));
    EXPECT_FALSE(record.contains(QStringLiteral("a0_codec")));
    EXPECT_EQ(record.value(QStringLiteral("a0_channels")), 2);
    EXPECT_EQ(record.value(QStringLiteral("v0_width")), 1440);
}

TEST_F(TrackInformationTest, aPictureOfNoSizeHasNoAspect)
{
    addVideo()->encoded = {0, 0};
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.value(QStringLiteral("v0_dar")), QStringLiteral("100:100"));
    EXPECT_EQ(record.value(QStringLiteral("v0_par")), QStringLiteral("100:100"));
}

TEST_F(TrackInformationTest, aMovieWithoutSizeIsMarkedAndDescribedOn)
{
    movie_->current = {0, 1080};
    addVideo();
    const LogCapture log;
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.value(QStringLiteral("w_qtasync")), 1);
    EXPECT_EQ(record.value(QStringLiteral("w_duration")), 10);
    EXPECT_FALSE(record.contains(QStringLiteral("w_width")));
    EXPECT_FALSE(record.contains(QStringLiteral("w_dar")));
    EXPECT_EQ(record.value(QStringLiteral("v0_codec")), QStringLiteral("h264"));
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur              : Movie lisible mais sans info wrapper (async?)")));
}

TEST_F(TrackInformationTest, aMovieWithoutTracksKeepsWhatItHas)
{
    const LogCapture log;
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_EQ(record.size(), 4);
    EXPECT_TRUE(log.contains(QStringLiteral(
        "echec                :-( code pas bon ou source non compatible QT (= pas trouve de track!!!)")));
}

TEST_F(TrackInformationTest, anUnreadableFileHasAnEmptyRecord)
{
    const LogCapture log;
    EXPECT_TRUE(infosQtMovieTrack(folder_.path(QStringLiteral("none.mov"))).isEmpty());
    EXPECT_TRUE(qtDico(folder_.path(QStringLiteral("none.mov"))).isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur              : Movie illisible")));
}

TEST_F(TrackInformationTest, opensAndClosesWithItsLines)
{
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_FALSE(infosQtMovieTrack(path_).isEmpty());
    EXPECT_TEXT(log.lines().first(), QStringLiteral("qt infosQtMovieTrack- debut"));
    EXPECT_TRUE(log.lines().last().endsWith(QStringLiteral("- fin")));
}

TEST_F(TrackInformationTest, anOrdinaryNameNeverTriesToSave)
{
    addVideo();
    const MediaInfoRecord record = infosQtMovieTrack(path_);
    EXPECT_FALSE(record.contains(QStringLiteral("w_nsav")));
    EXPECT_TRUE(movie_->writtenPaths.isEmpty());
}

TEST_F(TrackInformationTest, aFileNamedMovIsTriedForSaving)
{
    const QString path = folder_.makeFile(QStringLiteral("mov"));
    const std::shared_ptr<FakeMovie> movie = library_.addMovie(path);
    movie->length = QTMakeTime(600, 600);
    movie->current = {640, 480};
    movie->addTrack(QStringLiteral("soun"));
    const MediaInfoRecord record = infosQtMovieTrack(path);
    EXPECT_EQ(record.value(QStringLiteral("w_nsav")), false);
    EXPECT_EQ(movie->writtenPaths.size(), 2);
    EXPECT_TEXT(movie->writtenPaths.first(), folder_.path(QStringLiteral("totoTvx.mov")));
    EXPECT_FALSE(itemExists(folder_.path(QStringLiteral("totoTvx.mov"))));
    EXPECT_FALSE(movie->written.first().flatten.has_value());
}

TEST_F(TrackInformationTest, aMovieThatCannotBeSavedSaysSo)
{
    const QString path = folder_.makeFile(QStringLiteral("qtl"));
    const std::shared_ptr<FakeMovie> movie = library_.addMovie(path);
    movie->length = QTMakeTime(600, 600);
    movie->current = {640, 480};
    movie->writes = false;
    movie->addTrack(QStringLiteral("soun"));
    const LogCapture log;
    const MediaInfoRecord record = infosQtMovieTrack(path);
    EXPECT_EQ(record.value(QStringLiteral("w_nsav")), true);
    EXPECT_TRUE(log.contains(QStringLiteral("qt>infosQtMovieTr:-( nsav")));
    EXPECT_EQ(library_.opened.size(), 2) << "opened again after the repair";
}

TEST_F(TrackInformationTest, anUnsizedMovieIsNotTriedForSaving)
{
    const QString path = folder_.makeFile(QStringLiteral("mov"));
    const std::shared_ptr<FakeMovie> movie = library_.addMovie(path);
    movie->addTrack(QStringLiteral("soun"));
    EXPECT_FALSE(infosQtMovieTrack(path).contains(QStringLiteral("w_nsav")));
    EXPECT_TRUE(movie->writtenPaths.isEmpty());
}

TEST_F(TrackInformationTest, theRecordIsCompletedWithTheOffset)
{
    addVideo();
    addSound(1200, 4800, 600);
    EXPECT_EQ(qtDico(path_).value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(1200));
}

TEST_F(TrackInformationTest, anUnsizedMovieGetsItsOffsetToo)
{
    movie_->current = {0, 0};
    addSound(1200, 4800, 600);
    EXPECT_TRUE(qtDico(path_).contains(QStringLiteral("a0_offset")));
    movie_->trackList.clear();
    EXPECT_FALSE(qtDico(path_).contains(QStringLiteral("a0_offset")));
}

TEST_F(TrackInformationTest, theEarliestSoundGivesTheOffset)
{
    addSound(1200, 600, 600);
    EXPECT_EQ(qtOffsetMs(path_).value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(1200));
    addSound(900, 6000, 600);
    EXPECT_EQ(qtOffsetMs(path_).value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(900));
    addSound(1500, 100, 1000);
    EXPECT_EQ(qtOffsetMs(path_).value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(900))
        << "equal in seconds keeps the first";
    addSound(44100, 100, 44100);
    const QVariantMap offsets = qtOffsetMs(path_);
    EXPECT_EQ(offsets.value(QStringLiteral("a0_offset")), QVariant::fromValue<qint64>(44100));
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(TrackInformationTest, theEarliestEndIsOnlyLogged)
{
    addSound(1200, 600, 600);
    addSound(0, 3000, 600);
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_EQ(qtOffsetMs(path_).size(), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("la_mArray_fin 1      : 1800")));
}

TEST_F(TrackInformationTest, noSoundNoOffset)
{
    addVideo();
    const LogCapture log;
    EXPECT_TRUE(qtOffsetMs(path_).isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur              : Pas d'audio ou codec audio illisible QT")));
    EXPECT_TRUE(qtOffsetMs(folder_.path(QStringLiteral("none"))).isEmpty());
}

TEST_F(TrackInformationTest, sizesAreTruncated)
{
    movie_->natural = {640.9, 480.2};
    movie_->current = {320.5, 240.99};
    EXPECT_EQ(movieSizeNaturalDisplayed(path_), (QList<int>{640, 480}));
    EXPECT_EQ(movieSizeCurrentDisplayed(path_), (QList<int>{320, 240}));
}

TEST_F(TrackInformationTest, sizesOfAnUnreadableFileAreNothing)
{
    const QString none = folder_.path(QStringLiteral("none"));
    const LogCapture log;
    EXPECT_FALSE(movieSizeNaturalDisplayed(none).has_value());
    EXPECT_FALSE(movieSizeCurrentDisplayed(none).has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("movieSizeNaturalDisp:-( fin (echec Instantiate)")));
    EXPECT_TRUE(log.contains(QStringLiteral("movieSizeCurrentDisp:-( fin (echec Instantiate)")));
}

TEST_F(TrackInformationTest, durationIsInSeconds)
{
    EXPECT_FLOAT_EQ(dureeMovie(path_), 10.098F);
    const LogCapture log;
    EXPECT_FLOAT_EQ(dureeMovie(folder_.path(QStringLiteral("none"))), 0.0F);
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur               : Movie illisible")));
}

TEST_F(TrackInformationTest, attributesAreLogged)
{
    const LogCapture log;
    EXPECT_TRUE(movieInfosLog(path_));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("TOUS les Attributs   : ")));
    EXPECT_TRUE(log.lines().first().contains(QStringLiteral("fake")));
    EXPECT_FALSE(movieInfosLog(folder_.path(QStringLiteral("none"))));
    EXPECT_EQ(getQTMOVIE(), nullptr);
}

TEST_F(TrackInformationTest, savingIsTriedInTheTemporaryFolder)
{
    folder_.makeFile(QStringLiteral("totoTvx.mov"), "old");
    EXPECT_FALSE(nsavQtMovie(path_));
    EXPECT_TEXTS(movie_->calls, QStringList({QStringLiteral("editable"), QStringLiteral("write")}));
    EXPECT_FALSE(itemExists(folder_.path(QStringLiteral("totoTvx.mov"))));
    movie_->writes = false;
    EXPECT_TRUE(nsavQtMovie(path_));
    const LogCapture log;
    EXPECT_TRUE(nsavQtMovie(folder_.path(QStringLiteral("none"))));
    EXPECT_TRUE(log.contains(QStringLiteral("qt > nsavQtMovie - fin :-(")));
}

} // namespace tavrix::test
