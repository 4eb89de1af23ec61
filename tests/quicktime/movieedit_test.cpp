// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieedit.h"

#include "fakemedialibrary.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/moviequeries.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

namespace tavrix::test
{

namespace
{

struct DurationRow {
    const char* name;
    qint64 value;
    qint32 scale;
    double seconds;
};

class MovieDurationTest : public testing::TestWithParam<DurationRow>
{
};

struct CutRow {
    const char* name;
    double start;
    qint32 keep;
    const char* deleted; // the calls, separated by "|"
};

class CutStretchTest : public testing::TestWithParam<CutRow>
{
};

class MovieEditTest : public testing::Test
{
protected:
    MovieEditTest()
    {
        source_ = folder_.makeFile(QStringLiteral("source.mov"), "source");
        destination_ = folder_.path(QStringLiteral("cut.mov"));
        movie_ = library_.addMovie(source_);
        movie_->length = QTMakeTime(36000, 600);
    }

    std::shared_ptr<FakeTrack> addVideo(double width, double height)
    {
        std::shared_ptr<FakeTrack> track = movie_->addTrack(QStringLiteral("vide"));
        track->size = {width, height};
        return track;
    }

    [[nodiscard]] QStringList deletions() const { return movie_->calls.filter(QStringLiteral("delete ")); }

    TempFolder folder_;
    FakeLibrary library_;
    QString source_;
    QString destination_;
    std::shared_ptr<FakeMovie> movie_;
};

} // namespace

TEST_P(MovieDurationTest, isRoundedToTheMillisecond)
{
    FakeMovie movie(QStringLiteral("/a"));
    movie.length = QTMakeTime(GetParam().value, GetParam().scale);
    EXPECT_DOUBLE_EQ(movieDuration(movie), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Times, MovieDurationTest,
                         testing::Values(DurationRow{"whole", 6000, 600, 10.0}, DurationRow{"third", 1, 3, 0.333},
                                         DurationRow{"twoThirds", 2, 3, 0.667},
                                         DurationRow{"ntsc", 30030, 30000, 1.001},
                                         DurationRow{"halfUp", 5, 10000, 0.001},
                                         DurationRow{"belowHalf", 4, 10000, 0.0}, DurationRow{"noScale", 100, 0, 0.0},
                                         DurationRow{"beyondAnyMovie", 9223372036854775807LL, 600, 0.0}),
                         rowName<DurationRow>);

TEST(MovieTracksTest, areNothingWhenThereAreNone)
{
    FakeMovie movie(QStringLiteral("/a"));
    EXPECT_FALSE(movieTracks(movie).has_value());
    EXPECT_TRUE(movieVideoTracks(movie).isEmpty());
    for (const char* type : {"vide", "soun", "MPEG", "flsh", "movi", "text"}) {
        movie.addTrack(text(type));
    }
    EXPECT_EQ(movieTracks(movie)->size(), 6);
    EXPECT_EQ(movieVideoTracks(movie).size(), 4);
}

TEST_F(MovieEditTest, cutTakesItsEndAsALength)
{
    EXPECT_TRUE(movieCut(*movie_, 0, 100, 10));
    EXPECT_TEXTS(deletions(), QStringList{QStringLiteral("delete 0/10+100/10")});
    EXPECT_EQ(movie_->length.timeValue, 30000);
}

TEST_F(MovieEditTest, cutBehindTheEndIsClippedAndAgrees)
{
    EXPECT_TRUE(movieCut(*movie_, 18000, 36000, 600));
    EXPECT_EQ(movie_->length.timeValue, 18000);
}

TEST_F(MovieEditTest, cutInTheMiddleReportsFailureAlthoughItHasCut)
{
    EXPECT_FALSE(movieCut(*movie_, 10, 20, 1));
    EXPECT_EQ(movie_->length.timeValue, 24000);
}

TEST_F(MovieEditTest, cutThatChangesNothingIsAFailure)
{
    movie_->deletes = false;
    EXPECT_FALSE(movieCut(*movie_, 0, 100, 10));
    EXPECT_TRUE(movieCut(*movie_, 0, 10, 10)) << "one second is still accepted";
}

TEST_F(MovieEditTest, cutLogsTheThreeDurations)
{
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_TRUE(movieCut(*movie_, 0, 100, 10));
    EXPECT_TRUE(log.contains(QStringLiteral("60.000 - 10.000     =>? 50.000")));
}

TEST(ExportAttributesTest, dependOnTheMode)
{
    for (const int mode : {0, 1}) {
        const WriteAttributes attributes = exportAttributes(mode);
        EXPECT_EQ(attributes.flatten, false);
        EXPECT_EQ(attributes.exportNumber, mode);
        EXPECT_EQ(attributes.exportType, fourCharCode("MooV"));
        EXPECT_FALSE(attributes.exportManufacturer.has_value());
    }
    const WriteAttributes flat = exportAttributes(-1);
    EXPECT_EQ(flat.flatten, true);
    EXPECT_EQ(flat.exportNumber, 0);
    EXPECT_EQ(flat.exportType, fourCharCode("MooV"));
    const WriteAttributes wave = exportAttributes(-2);
    EXPECT_FALSE(wave.flatten.has_value());
    EXPECT_EQ(wave.exportNumber, 1);
    EXPECT_EQ(wave.exportType, fourCharCode("WAVE"));
    EXPECT_EQ(wave.exportManufacturer, fourCharCode("soun"));
    for (const int mode : {5, 2, -3}) {
        const WriteAttributes none = exportAttributes(mode);
        EXPECT_FALSE(none.flatten.has_value() || none.exportNumber.has_value() || none.exportType.has_value() ||
                     none.exportManufacturer.has_value());
    }
}

TEST_F(MovieEditTest, exportWithoutAFileStillReportsSuccess)
{
    movie_->leavesFile = false;
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_TRUE(exportMovie(*movie_, destination_, 0));
    EXPECT_TRUE(log.contains(QStringLiteral("QTKit_m Export:      :-( fin (testPresenceCocoa)")));
    EXPECT_TRUE(log.contains(QStringLiteral("QTKit_m Export:      :-) fin")));
    EXPECT_TRUE(log.contains(QStringLiteral("exportInt=0, dst=") + destination_));
}

TEST_F(MovieEditTest, failedExportIsLogged)
{
    movie_->writes = false;
    const LogCapture log;
    EXPECT_FALSE(exportMovie(*movie_, destination_, 0));
    EXPECT_TRUE(log.contains(QStringLiteral("QTKit Export:        :-( fin (Couldn't write movie to file)")));
}

TEST_F(MovieEditTest, exportOntoItsOwnSourceIsRefused)
{
    EXPECT_FALSE(exportMovie(*movie_, source_, 0));
    EXPECT_TRUE(movie_->written.isEmpty());
}

TEST_F(MovieEditTest, forcedSizeNeedsAVideoTrack)
{
    movie_->addTrack(QStringLiteral("soun"));
    movie_->current = {1, 2};
    EXPECT_FALSE(movieForceTracksSize(*movie_, 640, 480));
    EXPECT_EQ(movie_->current.width, 1);
}

TEST_F(MovieEditTest, forcedSizeChangesTracksThatDifferInBothDimensions)
{
    const std::shared_ptr<FakeTrack> both = addVideo(1280, 720);
    const std::shared_ptr<FakeTrack> sameWidth = addVideo(640, 360);
    const std::shared_ptr<FakeTrack> sameHeight = addVideo(720, 480);
    const std::shared_ptr<FakeTrack> noWidth = addVideo(0, 480);
    EXPECT_TRUE(movieForceTracksSize(*movie_, 640, 480));
    EXPECT_EQ(movie_->current.width, 640);
    EXPECT_EQ(movie_->current.height, 480);
    EXPECT_EQ(both->size.width, 640);
    EXPECT_EQ(both->size.height, 480);
    EXPECT_TEXT(both->displayName, QStringLiteral("TX Video Track"));
    EXPECT_EQ(sameWidth->size.height, 360);
    EXPECT_TRUE(sameWidth->displayName.isNull());
    EXPECT_EQ(sameHeight->size.width, 720);
    EXPECT_EQ(noWidth->size.width, 640) << "without a width the height counts as 0";
    EXPECT_TEXTS(movie_->calls, QStringList({QStringLiteral("track generate"), QStringLiteral("track mode 3"),
                                             QStringLiteral("track generate"), QStringLiteral("track mode 3")}));
}

TEST_F(MovieEditTest, rescalingSetsTheScalesInOrder)
{
    movie_->length = QTMakeTime(600, 600);
    EXPECT_TRUE(movieRescalePreExport(*movie_, 30000, 24000, folder_.path(QStringLiteral("slow"))));
    EXPECT_TEXTS(
        movie_->calls,
        QStringList({QStringLiteral("editable"), QStringLiteral("scale 30000"), QStringLiteral("scale 24000"),
                     QStringLiteral("scale segment 0/30000+30000/30000 to 37500/30000"), QStringLiteral("write")}));
    EXPECT_TEXTS(movie_->writtenPaths, QStringList{folder_.path(QStringLiteral("slow.mov"))});
    EXPECT_EQ(movie_->written.first().flatten, true);
}

TEST_F(MovieEditTest, rescalingTruncatesTheNewLength)
{
    movie_->length = QTMakeTime(1000, 1000);
    EXPECT_TRUE(movieRescalePreExport(*movie_, 1000, 3000, folder_.path(QStringLiteral("fast"))));
    EXPECT_TRUE(movie_->calls.contains(QStringLiteral("scale segment 0/1000+1000/1000 to 333/1000")));
}

TEST_P(CutStretchTest, deletes)
{
    const TempFolder folder;
    FakeLibrary library;
    const QString source = folder.makeFile(QStringLiteral("source.mov"));
    const std::shared_ptr<FakeMovie> movie = library.addMovie(source);
    movie->length = QTMakeTime(36000, 600);
    EXPECT_TRUE(
        movieCutForceSize(source, folder.path(QStringLiteral("cut.mov")), GetParam().start, GetParam().keep, 0, 0, -1));
    const QString deleted = movie->calls.filter(QStringLiteral("delete ")).join(QLatin1Char('|'));
    EXPECT_EQ(deleted, text(GetParam().deleted));
}

INSTANTIATE_TEST_SUITE_P(Stretches, CutStretchTest,
                         testing::Values(CutRow{"middle", 10, 30, "delete 0/10+100/10|delete 18000/600+30000/600"},
                                         CutRow{"startTooSmall", 0.05, 0, ""},
                                         CutRow{"onlyStart", 10, 0, "delete 0/10+100/10"},
                                         CutRow{"startToATenth", 1.19, 0, "delete 0/10+11/10"},
                                         CutRow{"onlyKeep", 0, 30, "delete 18000/600+36000/600"},
                                         CutRow{"keepBeyondTheEnd", 0, 100, ""},
                                         CutRow{"negativeStart", -40, 30, "delete 0/10+30/10"},
                                         CutRow{"negativeStartAndLongKeep", -1, 90, ""}),
                         rowName<CutRow>);

TEST_F(MovieEditTest, theWholeJobCutsResizesAndReplaces)
{
    addVideo(1280, 720);
    writeBytes(destination_, "old");
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_TRUE(movieCutForceSize(source_, destination_, 10, 30, 640, 480, -1));
    EXPECT_EQ(movie_->length.timeValue, 18000);
    EXPECT_EQ(movie_->current.width, 640);
    EXPECT_EQ(readBytes(destination_), QByteArray("movie"));
    EXPECT_EQ(getQTMOVIE(), nullptr);
    EXPECT_TRUE(log.contains(QStringLiteral("QTKit CoupeTailleMovie:-) fin")));
    EXPECT_TEXT(movie_->calls.first(), QStringLiteral("editable"));
}

TEST_F(MovieEditTest, aSizeOfNothingIsNotForced)
{
    addVideo(1280, 720);
    movie_->current = {1280, 720};
    EXPECT_TRUE(movieCutForceSize(source_, destination_, 0, 0, 0, 480, 5));
    EXPECT_EQ(movie_->current.width, 1280);
    EXPECT_FALSE(movie_->written.first().exportType.has_value());
}

TEST_F(MovieEditTest, everyFailureOfTheJobReleasesTheMovie)
{
    const LogCapture log;
    EXPECT_FALSE(movieCutForceSize(folder_.path(QStringLiteral("none")), destination_, 0, 0, 0, 0, 0));
    EXPECT_FALSE(movieCutForceSize(source_, destination_, 0, 0, 640, 480, 0)) << "no video track";
    EXPECT_EQ(getQTMOVIE(), nullptr);
    movie_->deletes = false;
    EXPECT_FALSE(movieCutForceSize(source_, destination_, 10, 0, 0, 0, 0));
    EXPECT_FALSE(movieCutForceSize(source_, destination_, 0, 30, 0, 0, 0));
    movie_->writes = false;
    EXPECT_FALSE(movieCutForceSize(source_, destination_, 0, 0, 0, 0, 0));
    EXPECT_EQ(getQTMOVIE(), nullptr);
    const QStringList failures = log.lines().filter(QStringLiteral("QTKit CoupeTailleMovi:-("));
    EXPECT_TEXTS(failures, QStringList({QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec Instantiate)"),
                                        QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec MovieTailleViaTrack)"),
                                        QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec MovieCoupe)"),
                                        QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec MovieCoupe cplt)"),
                                        QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec Export)")}));
}

TEST_F(MovieEditTest, aStartBeyondAnyMovieIsAFailureNotAWholeCopy)
{
    const LogCapture log;
    EXPECT_FALSE(movieCutForceSize(source_, destination_, 1e30, 30, 0, 0, 0));
    EXPECT_TRUE(log.contains(QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec MovieCoupe)")));
    EXPECT_FALSE(itemExists(destination_));
}

TEST_F(MovieEditTest, theSourceIsNeverDeletedAsDestination)
{
    const QString link = folder_.path(QStringLiteral("link.mov"));
    ASSERT_TRUE(QFile::link(source_, link));
    for (const QString& destination : {source_, link}) {
        const LogCapture log;
        EXPECT_FALSE(movieCutForceSize(source_, destination, 0, 0, 0, 0, 0));
        EXPECT_TRUE(log.contains(QStringLiteral("QTKit CoupeTailleMovi:-( fin (echec Export)")));
    }
    EXPECT_EQ(readBytes(source_), QByteArray("source"));
    EXPECT_TRUE(itemExists(link));
}

TEST_F(MovieEditTest, forcedDisplaySizeIsCheckedInTheWrittenFile)
{
    addVideo(1280, 720);
    const std::shared_ptr<FakeMovie> written = library_.addMovie(destination_);
    written->natural = {640.5, 480};
    EXPECT_TRUE(movieForceSizeCurrentDisplay(source_, destination_, 640, 480, -1));
    EXPECT_EQ(movie_->natural.width, 640);
    EXPECT_TRUE(movie_->calls.contains(QStringLiteral("mode 3")));
    written->natural = {640, 479};
    QTMOVIErelease();
    EXPECT_FALSE(movieForceSizeCurrentDisplay(source_, destination_, 640, 480, -1));
}

TEST_F(MovieEditTest, forcedDisplaySizeKeepsTheMovieOpenWhenTheExportFails)
{
    addVideo(1280, 720);
    movie_->writes = false;
    EXPECT_FALSE(movieForceSizeCurrentDisplay(source_, destination_, 640, 480, -1));
    EXPECT_NE(getQTMOVIE(), nullptr);
    movie_->trackList.clear();
    EXPECT_FALSE(movieForceSizeCurrentDisplay(source_, destination_, 640, 480, -1));
    EXPECT_EQ(getQTMOVIE(), nullptr);
    const LogCapture log;
    EXPECT_FALSE(movieForceSizeCurrentDisplay(folder_.path(QStringLiteral("none")), destination_, 1, 1, 0));
    EXPECT_TRUE(log.contains(QStringLiteral("movieForceSizeCurrentDisplay - fin (echec Instantiate)")));
}

TEST_F(MovieEditTest, forcedDisplaySizeDoesNotExpandATilde)
{
    const EnvironmentChange home("HOME", folder_.path().toUtf8().constData());
    addVideo(1280, 720);
    library_.addMovie(QStringLiteral("~/source.mov"));
    EXPECT_FALSE(movieForceSizeCurrentDisplay(QStringLiteral("~/source.mov"), destination_, 640, 480, 0))
        << "the movie of the unexpanded path has no video track";
    EXPECT_TEXTS(library_.opened, QStringList{QStringLiteral("~/source.mov")});
}

} // namespace tavrix::test
