// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/inspector.h"

#include "base/bundle/bundle.h"
#include "encode/outputformats.h"
#include "inspect/inspectjson.h"
#include "inspecttest.h"
#include "probe/batchtexts.h"
#include "probe/ffinfos.h"
#include "tools/ffmpeg/analysisversions.h"
#include "tools/ffmpeg/clipinspection.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Inspecting : public InspectTest
{
protected:
    // What the analysis of the program would read of the file.
    static MediaInfoRecord analysed(const QString& path)
    {
        QProcess process;
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(toolPath(QStringLiteral("ffmpeg")),
                      {QStringLiteral("-v"), QStringLiteral("2"), QStringLiteral("-i"), path,
                       QStringLiteral("-vframes"), QStringLiteral("10"), QStringLiteral("-s"),
                       QStringLiteral("640x480"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
                       QStringLiteral("-an"), QStringLiteral("-f"), QStringLiteral("yuv4mpegpipe"),
                       QStringLiteral("-y"), QStringLiteral("/dev/null")});
        EXPECT_TRUE(process.waitForFinished(-1));
        return recordFromBanner(QString::fromUtf8(process.readAllStandardError()));
    }

    static Inspection inspected(const QString& path, bool thorough = false)
    {
        return Inspector(path, InspectionWish{thorough}).finish();
    }

    QString made(const QString& name, const QString& arguments)
    {
        const QString path = folder.path(name);
        EXPECT_TRUE(makeMedia(path, arguments));
        return path;
    }
};

TEST_F(Inspecting, ATransportStreamTellsEverything)
{
    const QString path = folder.path(QStringLiteral("00001.MTS"));
    ASSERT_TRUE(makeTransportClip(path));
    const Inspection clip = inspected(path);
    ASSERT_TRUE(clip.described()) << clip.problem.toStdString();
    EXPECT_EQ(clip.infos.value(record::wrapper).toString(), QStringLiteral("mpegts"));
    EXPECT_FLOAT_EQ(clip.infos.value(record::v0_fps).toFloat(), 59.94F);
    EXPECT_EQ(clip.interlacing, QStringLiteral("PFF"));
    ASSERT_TRUE(clip.shown.has_value());
    EXPECT_NEAR(clip.shown->duration.value_or(0), 1.0, 0.1);
    EXPECT_TRUE(clip.verdict.accepted);
    EXPECT_EQ(clip.formats.size(), outputFormatCount);
    ASSERT_EQ(clip.offsets.size(), 1);
    ASSERT_TRUE(clip.offsets.first().byTimeStamps && clip.offsets.first().byTrackRanges);
    EXPECT_NEAR(*clip.offsets.first().byTimeStamps, *clip.offsets.first().byTrackRanges, 20);
    EXPECT_EQ(clip.recording.source, dateSource::file);
    // The whole file would have to be read for the number of pictures.
    EXPECT_FALSE(clip.movie.contains(record::v0_fps));
    EXPECT_FALSE(clip.thorough.has_value());
}

TEST_F(Inspecting, TheRecordIsThatOfTheAnalysis)
{
    const QString stream = folder.path(QStringLiteral("00001.MTS"));
    ASSERT_TRUE(makeTransportClip(stream));
    const QString avi = folder.path(QStringLiteral("a.avi"));
    ASSERT_TRUE(makeAviClip(avi));
    const QString movie = made(QStringLiteral("a.mov"),
                               QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -f lavfi -i "
                                              "sine=duration=1 -f lavfi -i sine=duration=1 -map 0 -map 1 -map 2 -c:v "
                                              "libx264 -preset ultrafast -bf 2 -c:a aac -f mov"));
    for (const QString& path : {stream, avi, movie}) {
        Inspection clip = inspected(path);
        for (auto it = clip.infos.begin(); it != clip.infos.end();) {
            it = it.key().contains(QLatin1String("_offset")) && it.key() != record::w_offset ? clip.infos.erase(it)
                                                                                             : std::next(it);
        }
        EXPECT_EQ(clip.infos, analysed(path)) << path.toStdString();
    }
}

// One way starts two programs, the other none.
TEST_F(Inspecting, TheCopyOfTheProgramTellsWhatTheToolTells)
{
    const QString picture = QStringLiteral("-f lavfi -i testsrc2=size=640x480:rate=30000/1001:duration=1 ");
    const QString sound = QStringLiteral("-f lavfi -i sine=duration=1 ");
    const QString h264 = QStringLiteral("-c:v libx264 -preset ultrafast -pix_fmt yuv420p ");
    QStringList files;
    const auto add = [&](const char* name, const QString& arguments) {
        files << made(QLatin1String(name), arguments);
    };
    add("late.MTS",
        QStringLiteral("-itsoffset 0.3 ") + picture + sound + h264 + QStringLiteral("-bf 2 -c:a ac3 -f mpegts"));
    add("two.mov", picture + sound + sound + h264 + QStringLiteral("-map 0 -map 1 -map 2 -c:a aac -metadata title=Hi"));
    add("jpeg.avi", picture + sound + QStringLiteral("-c:v mjpeg -pix_fmt yuvj422p -c:a pcm_u8 -ac 1"));
    add("fields.ts", picture + QStringLiteral("-c:v mpeg2video -flags +ilme+ildct -f mpegts"));
    add("pictures.mov", picture + picture + h264 + QStringLiteral("-map 0 -map 1"));
    add("sound.mp4", sound + QStringLiteral("-c:a aac"));
    add("turned.mov", QStringLiteral("-i ") + files.at(1) + QStringLiteral(" -c copy -metadata:s:v rotate=90"));
    QByteArray bytes = readBytes(files.first()).value_or(QByteArray());
    for (qsizetype i = bytes.size() / 20; i < bytes.size() / 4; i += 700) {
        bytes[i] = static_cast<char>(bytes[i] ^ 0x55);
    }
    files << folder.makeFile(QStringLiteral("damaged.MTS"), bytes)
          << folder.makeFile(QStringLiteral("cut.avi"), readBytes(files.at(2)).value_or(QByteArray()).left(20000))
          << folder.makeFile(QStringLiteral("text.mov"), "hello");
    EXPECT_EQ(front::canInspectClips(), front::isAnalysisProven());
    QList<QJsonObject> byCopy;
    for (const QString& file : files) {
        byCopy << inspectionObject(inspected(file));
    }
    const QString script = folder.makeFile(QStringLiteral("bin/ffmpeg"), "#!/bin/sh\nexec /usr/bin/ffmpeg \"$@\"\n");
    ASSERT_EQ(::chmod(QFile::encodeName(script).constData(), 0700), 0);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.path(QStringLiteral("bin"))) + ':' + path);
    EXPECT_FALSE(front::canInspectClips());
    for (qsizetype i = 0; i < files.size(); ++i) {
        EXPECT_EQ(inspectionObject(inspected(files.at(i))), byCopy.at(i)) << files.at(i).toStdString();
    }
    qputenv("PATH", path);
}

TEST_F(Inspecting, AMovieTellsItsSampleTables)
{
    const QString path = made(QStringLiteral("a.mov"),
                              QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=2 -f lavfi -i "
                                             "sine=sample_rate=48000:duration=2 -c:v libx264 -preset ultrafast "
                                             "-vf setparams=color_primaries=bt709:color_trc=bt709:colorspace=bt709 "
                                             "-colorspace bt709 -color_primaries bt709 -color_trc bt709 -c:a pcm_s16le "
                                             "-f mov"));
    const Inspection clip = inspected(path);
    EXPECT_NEAR(clip.movie.value(record::v0_fps).toDouble(), 25, 0.01);
    EXPECT_EQ(clip.movie.value(QStringLiteral("a0_bits")).toInt(), 16);
    ASSERT_TRUE(clip.shown.has_value());
    const media::StreamFacts* picture = shownStream(clip, media::Kind::Picture, 0);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->colour.primaries, "bt709");
    EXPECT_EQ(picture->colour.matrix, "bt709");
}

TEST_F(Inspecting, ATurnedPictureIsTold)
{
    const QString plain =
        made(QStringLiteral("plain.mp4"), QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -c:v "
                                                         "libx264 -preset ultrafast -f mp4"));
    const QString path = folder.path(QStringLiteral("turned.mov"));
    // The tool's way to write the flag is another in each of its versions, so the flag is set in the bytes.
    QByteArray bytes = readBytes(plain).value_or(QByteArray());
    const QByteArray upright =
        QByteArray::fromHex("00010000000000000000000000000000000100000000000000000000000000004000"
                            "0000");
    const QByteArray turned = QByteArray::fromHex("0000000000010000000000"
                                                  "00ffff0000000000000000000000000000000000004000"
                                                  "0000");
    const qsizetype track = bytes.indexOf("tkhd");
    const qsizetype matrix = bytes.indexOf(upright, track);
    ASSERT_GT(track, 0);
    ASSERT_GT(matrix, track);
    bytes.replace(matrix, upright.size(), turned);
    ASSERT_TRUE(writeBytes(path, bytes));
    const Inspection clip = inspected(path);
    const media::StreamFacts* picture = shownStream(clip, media::Kind::Picture, 0);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->turning.degrees, 90);
}

TEST_F(Inspecting, WhatIsLeftOutTellsWhy)
{
    const QString large = made(QStringLiteral("large.mov"),
                               QStringLiteral("-f lavfi -i color=size=1920x1080:rate=25:duration=0.2 -c:v libx264 "
                                              "-preset ultrafast -f mov"));
    EXPECT_FALSE(inspected(large).verdict.accepted);
    EXPECT_EQ(inspected(large).verdict.reason, formatText(batchText("Clip_tooLarge"), {"1920x1080"}));
    const QString fields =
        made(QStringLiteral("fields.MTS"),
             QStringLiteral("-f lavfi -i testsrc2=size=720x576:rate=50:duration=1 -vf interlace -c:v libx264 -preset "
                            "ultrafast -flags +ilme+ildct -x264opts tff=1 -f mpegts"));
    const Inspection interlaced = inspected(fields);
    EXPECT_EQ(interlaced.interlacing, QStringLiteral("TFF"));
    EXPECT_EQ(interlaced.verdict.reason, batchText("Clip_interlaced"));
    EXPECT_TRUE(interlaced.formats.isEmpty());
    const QString renamed = folder.path(QStringLiteral("clip.xyz"));
    ASSERT_TRUE(QFile::copy(large, renamed));
    EXPECT_EQ(inspected(renamed).verdict.reason, QStringLiteral("not a camera clip (.xyz)"));
}

TEST_F(Inspecting, SoundAloneIsDescribed)
{
    const QString path = made(QStringLiteral("sound.mov"),
                              QStringLiteral("-f lavfi -i sine=sample_rate=48000:duration=1 -c:a pcm_s16le -f mov"));
    const Inspection clip = inspected(path);
    ASSERT_TRUE(clip.described()) << clip.problem.toStdString();
    EXPECT_EQ(clip.infos.value(QStringLiteral("a0_codec")).toString(), QStringLiteral("pcm_s16le"));
    EXPECT_EQ(clip.verdict.reason, batchText("Clip_noVideo"));
}

TEST_F(Inspecting, ALateSoundIsToldBothWays)
{
    const QString path = made(QStringLiteral("late.mov"),
                              QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=3 -itsoffset 0.5 -f "
                                             "lavfi -i sine=sample_rate=48000:duration=2 -map 0 -map 1 -c:v mjpeg "
                                             "-c:a pcm_s16le -f mov"));
    const Inspection clip = inspected(path);
    ASSERT_EQ(clip.offsets.size(), 1);
    EXPECT_EQ(clip.offsets.first().byTrackRanges, 500);
    ASSERT_TRUE(clip.offsets.first().byTimeStamps.has_value());
    EXPECT_NEAR(*clip.offsets.first().byTimeStamps, 500, 1);
}

TEST_F(Inspecting, ADateComesFromTheCamerasPlaylist)
{
    const QString path = folder.path(QStringLiteral("BDMV/STREAM/00001.MTS"));
    folder.makeFolder(QStringLiteral("BDMV/STREAM"));
    ASSERT_TRUE(makeTransportClip(path, 0.5));
    // A marker, the clip's number, and the date in decimal digits.
    folder.makeFile(QStringLiteral("BDMV/PLAYLIST/00000.MPL"),
                    QByteArray::fromHex("0000ffff1e20000000011e20100501123456") + QByteArray(16, '\0'));
    const Inspection clip = inspected(path);
    EXPECT_EQ(clip.recorder.kind, RecorderKind::Avchd);
    EXPECT_EQ(clip.recording.source, dateSource::playlist);
    EXPECT_TRUE(clip.recording.date.startsWith(QStringLiteral("2010-05-01 12:34:56 ")));
    ASSERT_EQ(clip.formats.size(), outputFormatCount);
    EXPECT_EQ(clip.formats.at(3).name, QStringLiteral("clip-2010-05-01 12;34;56-00001.mov"));
}

TEST_F(Inspecting, WhatCannotBeReadTellsWhy)
{
    const auto problem = [](const QString& path) {
        const Inspection inspection = inspected(path);
        EXPECT_TRUE(inspection.infos.isEmpty());
        return inspection.problem;
    };
    const QString unreadable = QStringLiteral("this file could not be read; it may be damaged");
    EXPECT_EQ(problem(folder.path(QStringLiteral("absent.mov"))), batchText("Clip_notFound"));
    EXPECT_EQ(problem(folder.makeFile(QStringLiteral("empty.mov"))), unreadable);
    EXPECT_EQ(problem(folder.makeFile(QStringLiteral("noise.MTS"), QByteArray(5000, '\x55'))), unreadable);
    const QString pipe = folder.path(QStringLiteral("pipe.mov"));
    ASSERT_EQ(::mkfifo(qPrintable(pipe), 0600), 0);
    EXPECT_EQ(problem(pipe), batchText("Clip_noFile"));
    EXPECT_EQ(problem(QStringLiteral("/dev/zero")), batchText("Clip_noFile"));
    EXPECT_EQ(problem(folder.path(QString(QChar(QChar::ReplacementCharacter)))), batchText("Clip_unspeakable"));
}

TEST_F(Inspecting, APlayListIsNotFollowed)
{
    const QString clip = folder.path(QStringLiteral("00001.MTS"));
    ASSERT_TRUE(makeTransportClip(clip, 0.5));
    const QString list = folder.makeFile(QStringLiteral("list.ts"), "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:0.5,\n" +
                                                                        clip.toUtf8() + "\n#EXT-X-ENDLIST\n");
    EXPECT_FALSE(inspected(list).described());
    const QString script = folder.makeFile(QStringLiteral("script.mov"), "ffconcat version 1.0\nfile 00001.MTS\n");
    EXPECT_FALSE(inspected(script).described());
}

TEST_F(Inspecting, ACutMovieIsDescribedOrToldDamaged)
{
    const QString whole =
        made(QStringLiteral("whole.mov"),
             QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -c:v mjpeg -f mov"));
    const QByteArray bytes = readBytes(whole).value_or(QByteArray());
    const QString headless = folder.makeFile(QStringLiteral("cut.mov"), bytes.left(bytes.size() / 2));
    const Inspection inspection = inspected(headless);
    EXPECT_FALSE(inspection.described());
    EXPECT_FALSE(inspection.toolWords.isEmpty());
}

TEST_F(Inspecting, AMovieThatRefusesToBeSavedStaysAsItIs)
{
    // The name alone asks for the check that may write into the file.
    const QString path = made(QStringLiteral("mov"),
                              QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -c:v mjpeg -f mov"));
    const QByteArray before = readBytes(path).value_or(QByteArray());
    const QDateTime changed = QFileInfo(path).lastModified();
    const Inspection clip = inspected(path);
    EXPECT_FALSE(clip.movie.contains(record::w_nsav));
    EXPECT_EQ(readBytes(path), before);
    EXPECT_EQ(QFileInfo(path).lastModified(), changed);
}

TEST_F(Inspecting, ThoroughlyCountsAndDecodes)
{
    const QString path = folder.path(QStringLiteral("00001.MTS"));
    ASSERT_TRUE(makeTransportClip(path, 2));
    const Inspection clip = inspected(path, true);
    ASSERT_TRUE(clip.thorough.has_value());
    EXPECT_TRUE(clip.thorough->soundDecodes);
    EXPECT_FALSE(clip.thorough->needsVsync);
    EXPECT_NEAR(static_cast<double>(clip.thorough->countedRate), 59.94, 1);
    EXPECT_EQ(clip.thorough->elementarySeconds, -1);
}

TEST_F(Inspecting, AnElementaryStreamIsMeasuredThoroughly)
{
    const QString path =
        made(QStringLiteral("a.m2v"), QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=2.5 -c:v "
                                                     "mpeg2video -f mpeg2video"));
    const Inspection clip = inspected(path, true);
    ASSERT_TRUE(clip.described()) << clip.problem.toStdString();
    ASSERT_TRUE(clip.thorough.has_value());
    EXPECT_EQ(clip.thorough->elementarySeconds, 2);
}

TEST_F(Inspecting, SeveralAtOnceDoNotDisturbOneAnother)
{
    const QString stream = folder.path(QStringLiteral("00001.MTS"));
    ASSERT_TRUE(makeTransportClip(stream, 0.5));
    const QString avi = folder.path(QStringLiteral("a.avi"));
    ASSERT_TRUE(makeAviClip(avi));
    Inspector first(stream);
    Inspector second(avi);
    EXPECT_EQ(second.finish().infos.value(record::wrapper).toString(), QStringLiteral("avi"));
    EXPECT_EQ(first.finish().infos.value(record::wrapper).toString(), QStringLiteral("mpegts"));
}

TEST(ReasonInTranscript, IsTheLastWordOnTheFile)
{
    const QString transcript =
        QStringLiteral("[mov] moov atom not found\n/a b.mov: first\n/a b.mov: Unknown format\nx\n");
    EXPECT_EQ(reasonInTranscript(transcript, QStringLiteral("/a b.mov")), QStringLiteral("Unknown format"));
    EXPECT_TRUE(reasonInTranscript(transcript, QStringLiteral("/other.mov")).isNull());
}

} // namespace
