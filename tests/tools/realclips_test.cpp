// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffinfos.h"

#include "base/bundle/bundle.h"
#include "base/store/settings.h"
#include "probe/streamoffsets.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cmath>

// Records of real files, read through the program's own tool, against what ffprobe says of the same files.
namespace tavrix
{

namespace
{

using test::TempFolder;

struct ClipRow {
    const char* name;
    const char* file;
    const char* arguments; // of the ffmpeg that makes the clip, joined with blanks
    int video;
    int audio;
};

#define PICTURES(size, rate) "-f lavfi -i testsrc2=s=" size ":r=" rate ":d=1.6"
#define SOUND "-f lavfi -i sine=r=48000:d=1.6"
#define H264 "-c:v libx264 -preset ultrafast -pix_fmt yuv420p"
#define STEREO "-ac 2"

QByteArray output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments, QIODevice::ReadOnly);
    EXPECT_TRUE(process.waitForFinished(120000)) << process.errorString().toStdString();
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

void makeClip(const QString& path, const char* arguments)
{
    QStringList list = {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                        QStringLiteral("-y")};
    list += QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts);
    output(QStringLiteral("/usr/bin/ffmpeg"), list << path);
}

QJsonObject probed(const QString& path)
{
    const QStringList arguments = {QStringLiteral("-v"),
                                   QStringLiteral("error"),
                                   QStringLiteral("-show_format"),
                                   QStringLiteral("-show_streams"),
                                   QStringLiteral("-of"),
                                   QStringLiteral("json"),
                                   path};
    return QJsonDocument::fromJson(output(QStringLiteral("/usr/bin/ffprobe"), arguments)).object();
}

QString field(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toVariant().toString();
}

double quotient(const QString& fraction)
{
    const QStringList parts = fraction.split(u'/');
    return parts.value(0).toDouble() / parts.value(1).toDouble();
}

// The integer part of a number of bits in kilobits.
int kilobits(const QJsonObject& object)
{
    return static_cast<int>(field(object, "bit_rate").toLongLong() / 1000);
}

// The tool runs from the build's resource folder and captures into a folder of its own.
class Surroundings
{
public:
    Surroundings() : previous_(resourcePath())
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setTMPFOLDER(folder_.path() + u'/');
    }
    ~Surroundings()
    {
        setResourcePath(previous_);
        setTMPFOLDER(QString());
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    [[nodiscard]] const TempFolder& folder() const { return folder_; }

private:
    TempFolder folder_;
    QString previous_;
};

// Compares the keys of one stream with what ffprobe says of it.
class StreamCheck
{
public:
    StreamCheck(const MediaInfoRecord& record, const QJsonObject& stream, char kind, int number)
        : record_(record), stream_(stream), kind_(kind), number_(number)
    {
    }

    void common() const
    {
        EXPECT_EQ(value("id").toInt(), stream_.value(QLatin1String("index")).toInt());
        EXPECT_TEXT(value("codec").toString(), field(stream_, "codec_name"));
        if (kilobits(stream_) > 0) {
            EXPECT_EQ(value("bitrate").toInt(), kilobits(stream_));
        }
    }
    void video() const
    {
        common();
        EXPECT_EQ(value("width").toInt(), stream_.value(QLatin1String("width")).toInt());
        EXPECT_EQ(value("height").toInt(), stream_.value(QLatin1String("height")).toInt());
        EXPECT_NEAR(value("fps").toDouble(), quotient(field(stream_, "r_frame_rate")), 0.0051);
        EXPECT_TEXT(value("chroma").toString(), field(stream_, "pix_fmt"));
        EXPECT_EQ(value("par").toString(), field(stream_, "sample_aspect_ratio"));
        EXPECT_EQ(value("dar").toString(), field(stream_, "display_aspect_ratio"));
    }
    void audio() const
    {
        common();
        EXPECT_EQ(value("rate").toString(), field(stream_, "sample_rate"));
        // Only the first recognised layout of a file gives a count.
        if (number_ == 0) {
            EXPECT_EQ(value("channels").toInt(), stream_.value(QLatin1String("channels")).toInt());
        }
    }

private:
    [[nodiscard]] QVariant value(const char* name) const { return record_.value(record::stream(kind_, number_, name)); }

    const MediaInfoRecord& record_;
    QJsonObject stream_;
    char kind_;
    int number_;
};

void checkContainer(const MediaInfoRecord& record, const QJsonObject& format)
{
    EXPECT_TEXT(record.value(record::wrapper).toString(), field(format, "format_name"));
    const double hundredths = std::floor(field(format, "duration").toDouble() * 100 + 0.5);
    EXPECT_EQ(record.value(record::w_duration).toInt(), static_cast<int>(hundredths / 100));
    EXPECT_NEAR(record.value(record::w_offset).toDouble(), field(format, "start_time").toDouble(), 0.0001);
    EXPECT_EQ(record.value(record::w_bitrate).toInt(), kilobits(format));
}

} // namespace

class RealClips : public testing::TestWithParam<ClipRow>
{
};

TEST_P(RealClips, AgreeWithFfprobe)
{
    const ClipRow& row = GetParam();
    const Surroundings surroundings;
    const QString path = surroundings.folder().path(QString::fromUtf8(row.file));
    makeClip(path, row.arguments);
    const auto record = ffInfos(path, QStringLiteral(""));
    ASSERT_TRUE(record.has_value());
    const QJsonObject probe = probed(path);
    checkContainer(*record, probe.value(QLatin1String("format")).toObject());
    int video = 0;
    int audio = 0;
    for (const QJsonValue stream : probe.value(QLatin1String("streams")).toArray()) {
        const QString kind = field(stream.toObject(), "codec_type");
        if (kind == QLatin1String("video")) {
            StreamCheck(*record, stream.toObject(), 'v', video++).video();
        } else if (kind == QLatin1String("audio")) {
            StreamCheck(*record, stream.toObject(), 'a', audio++).audio();
        }
    }
    EXPECT_EQ(video, row.video);
    EXPECT_EQ(audio, row.audio);
    EXPECT_FALSE(record->contains(record::stream('v', row.video, "id")));
    EXPECT_FALSE(record->contains(record::stream('a', row.audio, "id")));
}

INSTANTIATE_TEST_SUITE_P(
    Containers, RealClips,
    testing::Values(
        ClipRow{"Mts", "00001.MTS",
                PICTURES("320x180", "50") " " SOUND " " H264 " -c:a ac3 -b:a 192k " STEREO
                                          " -f mpegts -mpegts_m2ts_mode 1",
                1, 1},
        ClipRow{"MtsOfSixtyPictures", "it's $5 (1).MTS",
                PICTURES("320x180", "60000/1001") " " SOUND " " H264 " -c:a ac3 " STEREO
                                                  " -f mpegts -mpegts_m2ts_mode 1",
                1, 1},
        ClipRow{"M2ts", "a b.m2ts", PICTURES("320x180", "25") " " SOUND " " H264 " -c:a ac3 -ac 6 -f mpegts", 1, 1},
        ClipRow{"Mov", "MOVE.MOV", PICTURES("320x180", "30000/1001") " " SOUND " " H264 " -c:a pcm_s16le " STEREO, 1,
                1},
        ClipRow{"Mp4", "a.mp4", PICTURES("160x120", "30") " " SOUND " -c:v mpeg4 -c:a aac " STEREO, 1, 1},
        ClipRow{"Avi", "MVI.AVI",
                PICTURES("160x120", "15") " " SOUND " -c:v mjpeg -pix_fmt yuvj422p -c:a pcm_u8 -ac 1 -ar 11025", 1, 1},
        ClipRow{"ProgramStream", "M2U.MPG",
                PICTURES("352x288", "25") " " SOUND " -c:v mpeg2video -b:v 1M -aspect 16:9 -c:a mp2 " STEREO " -f vob",
                1, 1},
        ClipRow{"Dv", "a.dv", PICTURES("720x576", "25") " " SOUND " " STEREO " -target pal-dv", 1, 1},
        ClipRow{"Anamorphic", "ana.mov", PICTURES("144x108", "25") ",setsar=4/3 " H264, 1, 0},
        ClipRow{"SeveralSounds", "many.ts",
                PICTURES("320x180", "25") " " SOUND " " SOUND " " SOUND " -map 0 -map 1 -map 2 -map 3 " H264
                                          " -c:a:0 ac3 -c:a:1 mp2 -c:a:2 aac -ac 2 -metadata:s:a:0 language=fra "
                                          "-metadata:s:a:1 language=eng",
                1, 3},
        ClipRow{"NoSound", "silent.mov", PICTURES("160x120", "24") " " H264, 1, 0},
        ClipRow{"SoundOnly", "sound.mov", SOUND " -c:a aac " STEREO, 0, 1},
        ClipRow{"TimeCodeTrack", "code.mov",
                PICTURES("160x120", "25") " " SOUND " " H264 " -c:a aac -timecode 01:02:03:04", 1, 1}),
    test::rowName<ClipRow>);

TEST(RealClip, SubtitleStreamsAreLeftOut)
{
    const Surroundings surroundings;
    const QString text = surroundings.folder().makeFile(
        QStringLiteral("a.srt"), "1\n00:00:00,000 --> 00:00:01,000\nStream #0:9: Audio: trap, 1 Hz\n");
    const QString path = surroundings.folder().path(QStringLiteral("sub.mov"));
    const QByteArray arguments = "-f lavfi -i testsrc2=s=160x120:r=25:d=1.2 -i " + text.toUtf8() +
                                 " -map 0 -map 1 -c:v mpeg4 -c:s mov_text -metadata title=Stream_#0:7:_Video:_trap";
    makeClip(path, arguments.constData());
    const auto record = ffInfos(path, QStringLiteral(""));
    ASSERT_TRUE(record.has_value());
    EXPECT_TEXT(record->value(record::v0_codec).toString(), QStringLiteral("mpeg4"));
    EXPECT_FALSE(record->contains(QStringLiteral("v1_id")));
    EXPECT_FALSE(record->contains(QStringLiteral("a0_id")));
}

TEST(RealClip, LanguagesComeFromTransportStreams)
{
    const Surroundings surroundings;
    const QString path = surroundings.folder().path(QStringLiteral("many.ts"));
    makeClip(path, SOUND " " SOUND " -map 0 -map 1 -c:a mp2 -metadata:s:a:0 language=fra -metadata:s:a:1 language=eng");
    const auto record = ffInfos(path, QStringLiteral(""));
    ASSERT_TRUE(record.has_value());
    EXPECT_TEXT(record->value(QStringLiteral("a0_lang")).toString(), QStringLiteral("fra"));
    EXPECT_TEXT(record->value(QStringLiteral("a1_lang")).toString(), QStringLiteral("eng"));
}

TEST(RealClip, HostileTitleAddsNoStream)
{
    const Surroundings surroundings;
    const QString path = surroundings.folder().path(QStringLiteral("title.mov"));
    output(QStringLiteral("/usr/bin/ffmpeg"),
           {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
            QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("testsrc2=s=160x120:r=25:d=1.2"),
            QStringLiteral("-c:v"), QStringLiteral("mpeg4"), QStringLiteral("-metadata"),
            QStringLiteral("title=Stream #1 Audio: trap, 1 Hz"), path});
    const auto record = ffInfos(path, QStringLiteral(""));
    ASSERT_TRUE(record.has_value());
    EXPECT_FALSE(record->contains(QStringLiteral("a0_id")));
    EXPECT_EQ(record->value(record::v0_width).toInt(), 160);
}

TEST(RealClip, BrokenFilesDescribeNoInput)
{
    const Surroundings surroundings;
    const TempFolder& folder = surroundings.folder();
    const QString whole = folder.path(QStringLiteral("whole.mov"));
    makeClip(whole, PICTURES("160x120", "25") " -c:v mpeg4");
    const QByteArray bytes = test::readBytes(whole).value_or(QByteArray());
    ASSERT_GT(bytes.size(), 1000);
    for (const QString& path :
         {folder.makeFile(QStringLiteral("cut.mov"), bytes.left(bytes.size() / 2)),
          folder.makeFile(QStringLiteral("empty.mts")), folder.makeFile(QStringLiteral("text.avi"), "no clip at all\n"),
          folder.path(QStringLiteral("missing.mov"))}) {
        EXPECT_FALSE(ffInfos(path, QStringLiteral("")).has_value()) << path.toStdString();
    }
}

// The sound of this clip starts 200 ms after the picture.
TEST(RealClip, OffsetsComeFromTheToolsTimestamps)
{
    const Surroundings surroundings;
    const QString path = surroundings.folder().path(QStringLiteral("late sound.ts"));
    makeClip(path, PICTURES("320x180", "25") " -itsoffset 0.2 " SOUND " -map 0 -map 1 -bf 0 " H264 " -c:a mp2");
    const QList<int> offsets = offsetTracks(path, QString());
    ASSERT_EQ(offsets.size(), 1);
    EXPECT_NEAR(offsets.first(), 200, 60);
}

} // namespace tavrix
