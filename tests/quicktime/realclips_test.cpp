// SPDX-License-Identifier: GPL-3.0-or-later
// Cutting, resizing and exporting generated clips, judged by ffmpeg and ffprobe.
#include "mediatools.h"

#include "fakemedialibrary.h"
#include "quicktime/model/componentregistry.h"
#include "quicktime/rules/framerate.h"
#include "quicktime/rules/movieedit.h"
#include "quicktime/rules/moviefiles.h"
#include "quicktime/rules/movieoffsets.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/trackinformation.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDir>
#include <QFile>

#include <cmath>

namespace tavrix::test
{

namespace
{

constexpr qsizetype frameRate = 25;
constexpr qsizetype soundRate = 48000;

// A clip whose pictures and sound differ from moment to moment, so that places can be recognised.
QString sources(int seconds, const char* size)
{
    return QStringLiteral("-f lavfi -i testsrc2=size=%1:rate=25:duration=%2 -f lavfi -i "
                          "anoisesrc=sample_rate=48000:duration=%2:seed=7 ")
        .arg(QString::fromLatin1(size))
        .arg(seconds);
}

class RealClipTest : public testing::Test
{
protected:
    ~RealClipTest() override { QTMOVIErelease(); }

    QString clip(const QString& name, const QString& arguments) const
    {
        QString path = folder_.path(name);
        makeClip(path, arguments);
        return path;
    }
    [[nodiscard]] QStringList items() const
    {
        return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    TempFolder folder_;
};

struct CutRow {
    const char* name;
    const char* file;
    const char* codecs;
    bool exactSound;
};

class CutClipTest : public RealClipTest, public testing::WithParamInterface<CutRow>
{
};

// Difference of two stretches of sound, as a share of their loudness.
double soundDifference(const QList<qint16>& a, qsizetype aStart, const QList<qint16>& b, qsizetype bStart,
                       qsizetype count)
{
    double difference = 0;
    double loudness = 0;
    for (qsizetype index = 0; index < count; ++index) {
        difference += std::abs(a[aStart + index] - b[bStart + index]);
        loudness += std::abs(a[aStart + index]);
    }
    return loudness == 0 ? 1 : difference / loudness;
}

} // namespace

TEST_P(CutClipTest, secondsTenToForty)
{
    const QString source = clip(text(GetParam().file), sources(60, "96x64") + text(GetParam().codecs));
    const QString cut = folder_.path(QStringLiteral("cut.mov"));
    ASSERT_TRUE(movieCutForceSize(source, cut, 10, 30, 0, 0, -1));
    EXPECT_TRUE(decodesCleanly(cut));
    EXPECT_NEAR(probed(cut, QString(), QStringLiteral("format=duration")).toDouble(), 30.0, 0.001);
    const QStringList original = pictureSums(source);
    const QStringList kept = pictureSums(cut);
    ASSERT_EQ(kept.size(), 30 * frameRate);
    EXPECT_TEXTS(kept, original.mid(10 * frameRate, 30 * frameRate));
    const QList<qint16> sourceSound = soundSamples(source);
    const QList<qint16> keptSound = soundSamples(cut);
    EXPECT_NEAR(static_cast<double>(keptSound.size()), 30.0 * soundRate, soundRate / 25.0);
    const qsizetype place = 20 * soundRate;
    const double difference = soundDifference(sourceSound, place, keptSound, place - 10 * soundRate, soundRate);
    EXPECT_LT(difference, GetParam().exactSound ? 1e-9 : 0.02);
    EXPECT_LT(QFile(cut).size(), QFile(source).size() * 3 / 4) << "only what is shown is copied";
}

INSTANTIATE_TEST_SUITE_P(
    Sources, CutClipTest,
    testing::Values(CutRow{"movWithBFramesAndPcm", "a.mov",
                           "-c:v libx264 -g 60 -bf 3 -preset ultrafast -b_strategy 0 -c:a pcm_s16le", true},
                    CutRow{"mp4WithAac", "a.mp4", "-c:v libx264 -g 60 -bf 2 -preset veryfast -c:a aac", false},
                    CutRow{"moovFirst", "a.mov",
                           "-c:v libx264 -g 250 -preset ultrafast -c:a pcm_s16be -movflags +faststart", true},
                    CutRow{"fragments", "a.mp4",
                           "-c:v libx264 -g 50 -preset ultrafast -c:a aac -movflags +frag_keyframe+empty_moov", false},
                    CutRow{"motionJpegAvi", "a.avi", "-c:v mjpeg -q:v 20 -c:a pcm_s16le", true},
                    CutRow{"matroska", "a.mkv", "-c:v libx264 -g 60 -bf 2 -preset ultrafast -c:a pcm_s16le", true}),
    rowName<CutRow>);

TEST_F(RealClipTest, transportStreamIsCutToo)
{
    const QString source =
        clip(QStringLiteral("a.ts"),
             sources(20, "160x120") + QStringLiteral("-c:v libx264 -g 25 -preset ultrafast -c:a ac3"));
    const QString cut = folder_.path(QStringLiteral("cut.mov"));
    ASSERT_TRUE(movieCutForceSize(source, cut, 5, 10, 0, 0, 0));
    EXPECT_TRUE(decodesCleanly(cut));
    EXPECT_NEAR(probed(cut, QString(), QStringLiteral("format=duration")).toDouble(), 10.0, 0.05);
    const QStringList original = pictureSums(source);
    const QStringList kept = pictureSums(cut);
    EXPECT_NEAR(static_cast<double>(kept.size()), 10.0 * frameRate, 1);
    EXPECT_NEAR(static_cast<double>(original.indexOf(kept.first())), 5.0 * frameRate, 1);
    EXPECT_TEXTS(items(), QStringList({QStringLiteral("a.ts"), QStringLiteral("cut.mov")}));
}

TEST_F(RealClipTest, aCutCanBeCutAgain)
{
    const QString source =
        clip(QStringLiteral("a.mov"),
             sources(20, "160x120") + QStringLiteral("-c:v libx264 -g 100 -preset ultrafast -c:a aac"));
    const QString once = folder_.path(QStringLiteral("once.mov"));
    const QString twice = folder_.path(QStringLiteral("twice.mov"));
    ASSERT_TRUE(movieCutForceSize(source, once, 3, 15, 0, 0, 0));
    ASSERT_TRUE(movieCutForceSize(once, twice, 2, 10, 0, 0, -1));
    EXPECT_TRUE(decodesCleanly(twice));
    EXPECT_TEXTS(pictureSums(twice), pictureSums(source).mid(5 * frameRate, 10 * frameRate));
}

TEST_F(RealClipTest, aStretchInTheMiddleIsTakenOut)
{
    const QString source =
        clip(QStringLiteral("a.mov"), sources(12, "160x120") + QStringLiteral("-c:v mjpeg -q:v 20 -c:a pcm_s16le"));
    ASSERT_TRUE(qtkitInstantiate(source));
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    movieEditable(*movie);
    movie->deleteSegment(QTMakeTimeRange(QTMakeTime(4, 1), QTMakeTime(5, 1)));
    EXPECT_DOUBLE_EQ(movieDuration(*movie), 7.0);
    EXPECT_DOUBLE_EQ(secondsDouble(movie->tracks().first()->range().duration), 7.0);
    const QString cut = folder_.path(QStringLiteral("cut.mov"));
    ASSERT_TRUE(exportMovie(*movie, cut, -1));
    const QStringList original = pictureSums(source);
    EXPECT_TEXTS(pictureSums(cut), original.mid(0, 100) + original.mid(225));
    EXPECT_NEAR(probed(cut, QString(), QStringLiteral("format=duration")).toDouble(), 7.0, 0.001);
}

TEST_F(RealClipTest, nothingIsCutFromAMovieThatIsNotEditable)
{
    const QString source = clip(QStringLiteral("a.mov"), sources(2, "160x120") + QStringLiteral("-c:v mjpeg -an"));
    ASSERT_TRUE(qtkitInstantiate(source));
    getQTMOVIE()->deleteSegment(QTMakeTimeRange(QTMakeTime(0, 1), QTMakeTime(1, 1)));
    EXPECT_DOUBLE_EQ(movieDuration(*getQTMOVIE()), 2.0);
}

TEST_F(RealClipTest, waveIsTheSoundOfTheStretch)
{
    const QString source =
        clip(QStringLiteral("a.mov"),
             sources(20, "160x120") + QStringLiteral("-c:v libx264 -preset ultrafast -c:a pcm_s16le -ac 2"));
    const QString wave = folder_.path(QStringLiteral("cut.wav"));
    ASSERT_TRUE(movieCutForceSize(source, wave, 5, 10, 0, 0, -2));
    const QList<qint16> kept = soundSamples(wave);
    EXPECT_EQ(kept, soundSamples(source).mid(qsizetype(5) * soundRate * 2, qsizetype(10) * soundRate * 2));
    EXPECT_TEXT(probed(wave, QStringLiteral("a:0"), QStringLiteral("stream=codec_name,sample_rate,channels")),
                QStringLiteral("pcm_s16le,48000,2"));
}

TEST_F(RealClipTest, waveOfAacBeginsWhereThePictureDoes)
{
    const QString source = clip(QStringLiteral("a.mp4"),
                                sources(10, "160x120") + QStringLiteral("-c:v libx264 -preset ultrafast -c:a aac"));
    const QString wave = folder_.path(QStringLiteral("cut.wav"));
    ASSERT_TRUE(movieCutForceSize(source, wave, 4, 0, 0, 0, -2));
    const QList<qint16> sound = soundSamples(source);
    const QList<qint16> kept = soundSamples(wave);
    EXPECT_NEAR(static_cast<double>(kept.size()), 6.0 * soundRate, 2048);
    EXPECT_LT(soundDifference(sound, qsizetype(5) * soundRate, kept, soundRate, soundRate), 0.01);
}

TEST_F(RealClipTest, waveOfASilentClipFailsAndLeavesNothing)
{
    const QString source = clip(QStringLiteral("a.mov"), sources(1, "160x120") + QStringLiteral("-c:v mjpeg -an"));
    EXPECT_FALSE(movieCutForceSize(source, folder_.path(QStringLiteral("cut.wav")), 0, 0, 0, 0, -2));
    EXPECT_TEXTS(items(), QStringList{QStringLiteral("a.mov")});
}

TEST_F(RealClipTest, forcedSizeIsReadBackAndShown)
{
    const QString source =
        clip(QStringLiteral("a.mov"), sources(2, "720x576") + QStringLiteral("-aspect 16:9 -c:v mjpeg -c:a pcm_s16le"));
    const QString resized = folder_.path(QStringLiteral("resized.mov"));
    EXPECT_TRUE(movieForceSizeCurrentDisplay(source, resized, 640, 360, -1));
    EXPECT_EQ(movieSizeNaturalDisplayed(resized), (QList<int>{640, 360}));
    EXPECT_EQ(movieSizeCurrentDisplayed(resized), (QList<int>{640, 360}));
    EXPECT_TRUE(decodesCleanly(resized));
    EXPECT_TEXT(probed(resized, QStringLiteral("v:0"), QStringLiteral("stream=width,height,display_aspect_ratio")),
                QStringLiteral("720,576,16:9"));
    EXPECT_TRUE(movieForceSizeCurrentDisplay(source, resized, 480, 360, -1));
    EXPECT_TEXT(probed(resized, QStringLiteral("v:0"), QStringLiteral("stream=display_aspect_ratio")),
                QStringLiteral("4:3"));
}

TEST_F(RealClipTest, forcedSizeThatATrackKeepsIsNotReached)
{
    const QString source = clip(QStringLiteral("a.mov"), sources(1, "640x360") + QStringLiteral("-c:v mjpeg -an"));
    const QString resized = folder_.path(QStringLiteral("resized.mov"));
    EXPECT_FALSE(movieForceSizeCurrentDisplay(source, resized, 640, 480, -1)) << "equal widths leave the track alone";
    EXPECT_EQ(movieSizeNaturalDisplayed(resized), (QList<int>{640, 360}));
    EXPECT_EQ(movieSizeCurrentDisplayed(resized), (QList<int>{640, 480})) << "the movie as a whole is scaled";
}

TEST_F(RealClipTest, rescalingSlowsThePicturesDown)
{
    const QString source =
        clip(QStringLiteral("a.mov"), sources(5, "160x120") + QStringLiteral("-c:v mjpeg -q:v 20 -c:a pcm_s16le"));
    ASSERT_TRUE(qtkitInstantiate(source));
    ASSERT_TRUE(movieRescalePreExport(*getQTMOVIE(), 25000, 20000, folder_.path(QStringLiteral("slow"))));
    const QString slow = folder_.path(QStringLiteral("slow.mov"));
    EXPECT_NEAR(probed(slow, QStringLiteral("v:0"), QStringLiteral("stream=duration")).toDouble(), 6.25, 0.01);
    EXPECT_TEXT(probed(slow, QStringLiteral("v:0"), QStringLiteral("stream=avg_frame_rate")), QStringLiteral("20/1"));
    EXPECT_TEXTS(pictureSums(slow), pictureSums(source));
    EXPECT_NEAR(static_cast<double>(dureeMovie(slow)), 6.25, 0.001);
}

TEST_F(RealClipTest, aFailedWriteLeavesTheOldFile)
{
    const QString source = clip(QStringLiteral("a.mov"), sources(1, "160x120") + QStringLiteral("-c:v mjpeg -an"));
    ASSERT_TRUE(qtkitInstantiate(source));
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    const QString destination = folder_.makeFile(QStringLiteral("old.mov"), "old");
    ASSERT_TRUE(QFile::resize(source, 200)) << "the source changes under the open movie";
    EXPECT_FALSE(exportMovie(*movie, destination, -1));
    EXPECT_EQ(readBytes(destination), QByteArray("old"));
    EXPECT_FALSE(exportMovie(*movie, folder_.path(QStringLiteral("no/such/folder.mov")), -1));
    EXPECT_TEXTS(items(), QStringList({QStringLiteral("a.mov"), QStringLiteral("old.mov")}));
}

TEST_F(RealClipTest, aSoundThatQuickTimeCannotHoldFailsCleanly)
{
    const QString source =
        clip(QStringLiteral("a.mkv"), sources(1, "160x120") + QStringLiteral("-c:v vp8 -c:a vorbis -strict -2 -ac 2"));
    EXPECT_FALSE(movieCutForceSize(source, folder_.path(QStringLiteral("cut.mov")), 0, 0, 0, 0, -1));
    EXPECT_TEXTS(items(), QStringList{QStringLiteral("a.mkv")});
}

namespace
{

struct RecordRow {
    const char* name;
    const char* file;
    const char* arguments; // behind the sources of two seconds
    const char* size;
    MediaInfoRecord expected;
};

class RecordTest : public RealClipTest, public testing::WithParamInterface<RecordRow>
{
};

void PrintTo(const RecordRow& row, std::ostream* stream)
{
    *stream << row.name;
}

MediaInfoRecord values(std::initializer_list<std::pair<const char*, QVariant>> pairs)
{
    MediaInfoRecord record;
    for (const auto& [key, value] : pairs) {
        record.insert(QString::fromLatin1(key), value);
    }
    return record;
}

} // namespace

TEST_P(RecordTest, agreesWithFfprobe)
{
    const QString path = clip(text(GetParam().file), sources(2, GetParam().size) + text(GetParam().arguments));
    const MediaInfoRecord record = qtDico(path);
    for (auto entry = GetParam().expected.cbegin(); entry != GetParam().expected.cend(); ++entry) {
        EXPECT_EQ(record.value(entry.key()), entry.value()) << entry.key().toStdString();
    }
    EXPECT_EQ(record.value(QStringLiteral("w_duration")).toInt(),
              static_cast<int>(probed(path, QString(), QStringLiteral("format=duration")).toDouble() + 0.001));
    const QStringList picture =
        probed(path, QStringLiteral("v:0"), QStringLiteral("stream=width,height,display_aspect_ratio"))
            .section(QLatin1Char('\n'), 0, 0)
            .split(QLatin1Char(','));
    EXPECT_EQ(record.value(QStringLiteral("v0_width")).toString(), picture.value(0));
    EXPECT_EQ(record.value(QStringLiteral("v0_height")).toString(), picture.value(1));
    if (picture.value(2) != QLatin1String("N/A")) {
        EXPECT_EQ(record.value(QStringLiteral("v0_dar")).toString(), picture.value(2));
    }
    const QStringList sound = probed(path, QStringLiteral("a:0"), QStringLiteral("stream=sample_rate,channels"))
                                  .section(QLatin1Char('\n'), 0, 0)
                                  .split(QLatin1Char(','));
    EXPECT_EQ(record.value(QStringLiteral("a0_rate")).toString(), sound.value(0));
    EXPECT_EQ(record.value(QStringLiteral("a0_channels")).toString(), sound.value(1));
    EXPECT_NEAR(record.value(QStringLiteral("v0_fps")).toDouble(), 25.0, 0.6);
}

INSTANTIATE_TEST_SUITE_P(
    Clips, RecordTest,
    testing::Values(
        RecordRow{"h264Mov", "a.mov", "-c:v libx264 -preset ultrafast -c:a pcm_s16le", "640x480",
                  values({{"v0_codec", QStringLiteral("h264")},
                          {"v0_par", QStringLiteral("1:1")},
                          {"w_dar", QStringLiteral("4:3")},
                          {"v0_fps", 25.0F},
                          {"v0_cropright", 0},
                          {"v0_cropbottom", 0},
                          {"a0_codec", QStringLiteral("pcm_s16le")},
                          {"a0_bits", 16},
                          {"a0_offset", QVariant::fromValue<qint64>(0)}})},
        RecordRow{"wideSd", "a.mov", "-aspect 16:9 -c:v mjpeg -c:a pcm_s16be -ac 2", "720x576",
                  values({{"v0_codec", QStringLiteral("jpeg")},
                          {"v0_par", QStringLiteral("64:45")},
                          {"w_width", 1024},
                          {"w_dar", QStringLiteral("16:9")},
                          {"v0_cropright", 0},
                          {"a0_codec", QStringLiteral("pcm_s16be")}})},
        RecordRow{
            "mp4Aac", "a.mp4", "-c:v libx264 -preset ultrafast -c:a aac -ac 2 -ar 44100", "320x240",
            values({{"v0_codec", QStringLiteral("h264")}, {"a0_codec", QStringLiteral("aac")}, {"v0_fps", 25.0F}})},
        RecordRow{"anamorphicMp4", "a.mp4", "-aspect 16:9 -c:v libx264 -preset ultrafast -c:a aac", "1440x1080",
                  values({{"v0_par", QStringLiteral("4:3")}, {"w_width", 1920}, {"v0_cropright", 0}})},
        RecordRow{"aviMotionJpeg", "a.avi", "-c:v mjpeg -c:a pcm_s16le", "640x480",
                  values({{"v0_codec", QStringLiteral("mjpg")},
                          {"a0_codec", QStringLiteral("pcm_s16le")},
                          {"w_width", 640}})},
        RecordRow{"transportStream", "a.ts", "-c:v libx264 -preset ultrafast -c:a ac3", "640x360",
                  values({{"v0_codec", QStringLiteral("h264")}, {"a0_codec", QStringLiteral("ac3")}})},
        RecordRow{"matroska", "a.mkv", "-c:v mpeg4 -c:a libmp3lame", "640x360",
                  values({{"v0_codec", QStringLiteral("mpeg4")}, {"a0_codec", QStringLiteral("mp3")}})},
        RecordRow{"flash", "a.flv", "-c:v flv -c:a libmp3lame -ar 44100", "320x240",
                  values({{"v0_codec", QStringLiteral("flv")}, {"a0_codec", QStringLiteral("mp3")}})},
        RecordRow{"windowsMedia", "a.wmv", "-c:v wmv2 -c:a wmav2 -ar 44100", "320x240",
                  values({{"v0_codec", QStringLiteral("wmv2")}, {"a0_codec", QStringLiteral("wmav2")}})},
        RecordRow{"highRateSound", "a.mov", "-c:v mjpeg -c:a pcm_s16le -ar 96000", "320x240",
                  values({{"a0_rate", 96000}, {"a0_codec", QStringLiteral("lpcm")}})}),
    rowName<RecordRow>);

TEST_F(RealClipTest, ratesOfTheTelevisionStandardsAreThoseOfFfprobe)
{
    struct Rate {
        const char* fraction;
        float expected;
    };
    for (const Rate& rate : {Rate{"24000/1001", 23.976F}, Rate{"25", 25.0F}, Rate{"30000/1001", 29.97F},
                             Rate{"50", 50.0F}, Rate{"60000/1001", 59.94F}}) {
        const QString fraction = text(rate.fraction);
        const QString path =
            clip(QStringLiteral("rate.mov"),
                 QStringLiteral("-f lavfi -i testsrc2=size=64x64:rate=%1:duration=3 -c:v mjpeg").arg(fraction));
        EXPECT_FLOAT_EQ(movieFpsQt(path, 0), rate.expected) << rate.fraction;
        QTMOVIErelease();
        const QString told = probed(path, QStringLiteral("v:0"), QStringLiteral("stream=avg_frame_rate"));
        EXPECT_TRUE(told.startsWith(fraction)) << told.toStdString();
    }
}

TEST_F(RealClipTest, delayedSoundHasItsOffset)
{
    const QString path =
        clip(QStringLiteral("a.mov"),
             QStringLiteral("-f lavfi -i testsrc2=size=160x120:rate=25:duration=4 -itsoffset 1.5 -f lavfi -i "
                            "anoisesrc=sample_rate=48000:duration=2 -c:v mjpeg -c:a pcm_s16le"));
    ASSERT_TRUE(qtkitInstantiate(path));
    const qint32 scale = getQTMOVIE()->duration().timeScale;
    EXPECT_EQ(qtOffsetMs(path).value(QStringLiteral("a0_offset")).toLongLong(), qint64(scale) * 3 / 2);
    EXPECT_NEAR(probed(path, QStringLiteral("a:0"), QStringLiteral("stream=start_time")).toDouble(), 1.5, 1e-6);
}

TEST_F(RealClipTest, whatIsNoMovieIsNotOpened)
{
    EXPECT_FALSE(qtkitInstantiate(folder_.makeFile(QStringLiteral("a.mov"), "not a movie")));
    EXPECT_FALSE(qtkitInstantiate(folder_.makeFolder(QStringLiteral("folder.mov"))));
    EXPECT_FALSE(qtkitInstantiate(folder_.makeFile(QStringLiteral("empty.mov"))));
    const QString list =
        folder_.makeFile(QStringLiteral("list.m3u8"),
                         "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nhttp://127.0.0.1:9/a.ts\n#EXT-X-ENDLIST\n");
    EXPECT_FALSE(qtkitInstantiate(list)) << "addresses inside a file are never followed";
}

} // namespace tavrix::test
