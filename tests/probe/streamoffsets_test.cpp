// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/streamoffsets.h"

#include "base/bundle/bundle.h"
#include "base/store/settings.h"
#include "probe/fakeresources.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"

namespace tavrix
{

namespace
{

struct PtsRow {
    const char* name;
    const char* transcript;
    const char* offsets; // "key=value" joined with blanks
};

struct TrackRow {
    const char* name;
    const char* transcript;
    const char* mode;
    const char* offsets; // joined with blanks
};

QString shownOffsets(const QVariantMap& offsets)
{
    QStringList texts;
    for (auto it = offsets.begin(); it != offsets.end(); ++it) {
        texts.append(it.key() + u'=' + it.value().toString());
    }
    return texts.join(u' ');
}

QString shownList(const QList<int>& offsets)
{
    QStringList texts;
    for (const int offset : offsets) {
        texts.append(QString::number(offset));
    }
    return texts.join(u' ');
}

#define STREAMS                                                                                                        \
    "Input #0\n    Stream #0.0[0x1011], 12, 1/1000: Video: h264\n    Stream #0.1[0x1100], 3, 1/1000: Audio: ac3\n"
#define TRACKS                                                                                                         \
    "  Duration: 00:00:09.98, start: 1.400000, bitrate: 1 kb/s\n"                                                      \
    "    Stream #0.0[0x1011], 12, 1/1000: Video: h264\n    Stream #0.1[0x1100], 3, 1/1000: Audio: ac3\n"
#define VIDEO0 "av_read_frame_internal stream=0, pts=1400, dts=1400, size=1\n"

} // namespace

class PtsOffsets : public testing::TestWithParam<PtsRow>
{
};

TEST_P(PtsOffsets, AreMeasured)
{
    EXPECT_EQ(shownOffsets(ptsDtsOffsetMs(test::text(GetParam().transcript))), test::text(GetParam().offsets));
}

INSTANTIATE_TEST_SUITE_P(
    Transcripts, PtsOffsets,
    testing::Values(
        PtsRow{"Nothing", nullptr, ""}, PtsRow{"Empty", "", ""}, PtsRow{"NoPackets", STREAMS, ""},
        PtsRow{"SmallOffsetIsNotStored",
               STREAMS "av_read_packet stream=0, pts=0, dts=0, size=1\nav_read_packet stream=1, pts=25, dts=25, size=1",
               ""},
        PtsRow{"ThirtyIsNotStored",
               STREAMS "av_read_packet stream=0, pts=0, dts=0, size=1\nav_read_packet stream=1, pts=30, dts=30, size=1",
               ""},
        PtsRow{"ThirtyOneIsStored",
               STREAMS "av_read_packet stream=0, pts=0, dts=0, size=1\nav_read_packet stream=1, pts=31, dts=31, size=1",
               "a1_offsetDts=31 a1_offsetPts=31"},
        // In doubles (1.031 - 1.0) * 1000 is a little under 31, and the fraction is cut.
        PtsRow{"ThirtyOneAfterASecondIsCutToThirty",
               STREAMS
               "av_read_packet stream=0, pts=1000, dts=1000, size=1\nav_read_packet stream=1, pts=1031, dts=1031, s",
               ""},
        PtsRow{"Negative",
               STREAMS
               "av_read_packet stream=0, pts=500, dts=500, size=1\nav_read_packet stream=1, pts=375, dts=375, size=1",
               "a1_offsetDts=-125 a1_offsetPts=-125"},
        PtsRow{"DtsComesFirstWhenPtsIsZero",
               STREAMS
               "av_read_packet stream=0, pts=0, dts=100, size=1\nav_read_packet stream=1, pts=400, dts=300, size=1",
               "a1_offsetDts=300 a1_offsetPts=300"},
        PtsRow{"NoPtsCountsAsZeroDts",
               STREAMS
               "av_read_packet stream=0, pts=NOPTS, dts=NOPTS, size=1\nav_read_packet stream=1, pts=400, dts=0, s",
               "a1_offsetDts=400 a1_offsetPts=400"},
        PtsRow{"FirstPacketCounts",
               STREAMS
               "av_read_packet stream=0, pts=100, dts=100, size=1\nav_read_packet stream=0, pts=50, dts=50, size=1\n"
               "av_read_packet stream=1, pts=200, dts=200, size=1",
               "a1_offsetDts=100 a1_offsetPts=100"},
        PtsRow{"NoVideo", "x\n    Stream #0.1, 3, 1/1000: Audio: ac3\nav_read_packet stream=1, pts=400, dts=0, size=1",
               ""},
        PtsRow{"NoAudio", "x\n    Stream #0.0, 3, 1/1000: Video: h264\nav_read_packet stream=0, pts=400, dts=0, size=1",
               ""},
        PtsRow{"FirstLineIsNotSeen",
               "av_read_packet stream=0, pts=400, dts=400, size=1\n" STREAMS
               "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=1, pts=200, dts=200, s",
               "a1_offsetDts=100 a1_offsetPts=100"},
        PtsRow{"SmallestVideoIsTheReference",
               STREAMS "    Stream #0.2, 12, 1/1000: Video: h264\n"
                       "av_read_packet stream=0, pts=500, dts=500, s\nav_read_packet stream=2, pts=250, dts=250, s\n"
                       "av_read_packet stream=1, pts=250, dts=250, s",
               "v0_offsetDts=250 v0_offsetPts=250"},
        PtsRow{"OtherKindsHaveTheirKey",
               STREAMS "    Stream #0.2(eng), 12, 1/1000: Subtitle: x\n"
                       "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=1, pts=100, dts=100, s\n"
                       "av_read_packet stream=2, pts=200, dts=200, s",
               "s2_offsetDts=100 s2_offsetPts=100"},
        PtsRow{"UnknownStreamStopsTheCollection",
               STREAMS "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=7, pts=100, dts=100, s\n"
                       "av_read_packet stream=1, pts=200, dts=200, s",
               ""},
        PtsRow{"OnlyTheFirstDigitCounts",
               STREAMS "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=12, pts=200, dts=200, s",
               "a1_offsetDts=100 a1_offsetPts=100"},
        PtsRow{"TimeBasesDiffer",
               "x\n    Stream #0.0(eng), 1, 1/90000: Video: h264\n    Stream #0.1(eng): x, 1/48000: Audio: aac\n"
               "av_read_packet stream=0, pts=90000, dts=90000, s\nav_read_packet stream=1, pts=96000, dts=96000, s",
               "a1_offsetDts=1000 a1_offsetPts=1000"},
        PtsRow{"NumeratorOtherThanOne",
               "x\n    Stream #0.0, 1, 2/1000: Video: h264\n    Stream #0.1, 1, 1/1000: Audio: aac\n"
               "av_read_packet stream=0, pts=250, dts=250, s\nav_read_packet stream=1, pts=1500, dts=1500, s",
               "a1_offsetDts=1000 a1_offsetPts=1000"},
        PtsRow{"MappingAndRawVideoAreNoStreams",
               STREAMS "    Stream #0.0, 1, 1/5: Video: rawvideo\n  Stream #0.0 -> #0.0, 1/7: Video:\n"
                       "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=1, pts=200, dts=200, s",
               "a1_offsetDts=100 a1_offsetPts=100"},
        PtsRow{"OutputStreamsDoNotHideInputStreams",
               STREAMS "    Stream #0.0: Video: mpeg4, yuv420p, 200 kb/s\n    Stream #0.1: Video: x, 1 kb/s\n"
                       "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=1, pts=200, dts=200, s",
               "a1_offsetDts=100 a1_offsetPts=100"},
        PtsRow{"ZeroTimeBaseIsSkipped",
               "x\n    Stream #0.0, 1, 1/0: Video: h264\n    Stream #0.1, 1, 1/1000: Audio: aac\n"
               "av_read_packet stream=0, pts=30, dts=30, s\nav_read_packet stream=1, pts=2001, dts=2001, s",
               ""},
        PtsRow{"Damaged", "x\nStream #\nStream #0., 1/: Video:\nav_read_packet stream=\nStream #0.1, /1: Audio:", ""}),
    test::rowName<PtsRow>);

class TrackOffsets : public testing::TestWithParam<TrackRow>
{
};

TEST_P(TrackOffsets, AreMeasured)
{
    const TrackRow& row = GetParam();
    EXPECT_EQ(shownList(offsetTracksFromTranscript(test::text(row.transcript), test::text(row.mode))),
              test::text(row.offsets));
}

INSTANTIATE_TEST_SUITE_P(
    Transcripts, TrackOffsets,
    testing::Values(
        TrackRow{"Nothing", nullptr, "", ""}, TrackRow{"Empty", "", "", ""}, TrackRow{"NoPackets", TRACKS, "", ""},
        TrackRow{"OneAudio", TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1", "", "100"},
        TrackRow{"Negative", TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=1150, dts=1500, size=1", "", "-250"},
        TrackRow{"NothingAsMode", TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1", nullptr,
                 "100"},
        TrackRow{"NegativePtsIsSkipped",
                 TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=-5, dts=0, s\nav_read_frame_internal stream=1, "
                               "pts=1500, dts=0, s",
                 "", "100"},
        TrackRow{"EmptyPtsIsSkipped",
                 TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=, dts=0, s\nav_read_frame_internal stream=1, "
                               "pts=1500, dts=0, s",
                 "", "100"},
        TrackRow{"NoVideoPackets", TRACKS "av_read_frame_internal stream=1, pts=1500, dts=0, s", "", ""},
        TrackRow{"NoAudioPackets", TRACKS VIDEO0, "", ""},
        TrackRow{"SecondAudioWithoutPacketsIsLeftOut",
                 TRACKS "    Stream #0.2, 1, 1/1000: Audio: ac3\n    Stream #0.3, 1, 1/1000: Audio: ac3\n" VIDEO0
                        "av_read_frame_internal stream=1, pts=1500, dts=0, s\nav_read_frame_internal stream=3, "
                        "pts=1900, dts=0, s",
                 "", "100 500"},
        TrackRow{"FiveAudioStreams",
                 TRACKS "    Stream #0.2, 1, 1/1000: Audio: x\n    Stream #0.3, 1, 1/1000: Audio: x\n"
                        "    Stream #0.4, 1, 1/1000: Audio: x\n    Stream #0.5, 1, 1/1000: Audio: x\n" VIDEO0
                        "av_read_frame_internal stream=1, pts=1500, d\nav_read_frame_internal stream=2, pts=1600, d\n"
                        "av_read_frame_internal stream=3, pts=1900, d\nav_read_frame_internal stream=4, pts=1400, d\n"
                        "av_read_frame_internal stream=5, pts=1500, d\n",
                 "", "100 200 500 0"},
        TrackRow{"StreamOneClaimsStreamTen",
                 TRACKS "    Stream #0.10, 1, 1/1000: Audio: x\n" VIDEO0
                        "av_read_frame_internal stream=10, pts=1900, dts=1500, size=1\n"
                        "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1\n",
                 "", "500"},
        TrackRow{
            "DelimitersInTheirOrder",
            "  Duration: x, start: 0\n    Stream #0.0(eng), 1/1000: Video: x\n    Stream #0.1(eng), 1/1000: Audio: x\n"
            "av_read_frame_internal stream=0, pts=125, d\nav_read_frame_internal stream=1, pts=375, d\n",
            "", "250"},
        TrackRow{"NumeratorOtherThanOne",
                 "    Stream #0.0, 1, 2/1000: Video: x\n    Stream #0.1, 1, 1/1000: Audio: x\n"
                 "av_read_frame_internal stream=0, pts=250, d\nav_read_frame_internal stream=1, pts=1500, d\n",
                 "", "1000"},
        TrackRow{"ZeroTimeBaseIsSkipped",
                 "    Stream #0.0, 1, 1/0: Video: x\n    Stream #0.1, 1, 1/1000: Audio: x\n" VIDEO0
                 "av_read_frame_internal stream=1, pts=1500, d\n",
                 "", ""},
        // w is the cut (1.4 - 1.4 - 0.0005) * 1000 = 0; the sum is (1.4 - 1.5 - 0.0005) * -1000 = 100.5, cut.
        TrackRow{"StreamCopy", TRACKS VIDEO0 "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1",
                 "streamCopy", "100"},
        // w is -80, the second term 0.5 - 0: the sum -159.5 is cut to -159.
        TrackRow{"StreamCopyCutsTheWholeSum",
                 TRACKS "av_read_frame_internal stream=0, pts=1480, d\nav_read_frame_internal stream=1, pts=1400, d",
                 "streamCopy", "-159"},
        TrackRow{"OtherLineEnds",
                 "  Duration: 0, start: 0\r\n    Stream #0.0, 1, 1/1000: Video: x\r\n    Stream #0.1, 1, "
                 "1/1000: Audio: x\r\nav_read_frame_internal stream=0, pts=125, d\r\n"
                 "av_read_frame_internal stream=1, pts=375\r\n",
                 "", "250"},
        TrackRow{"Damaged",
                 "Stream #0.\nStream #0.Video:\nStream #0.Audio:\nDuration:start:\nav_read_frame_internal stream=",
                 "streamCopy", ""}),
    test::rowName<TrackRow>);

TEST(OffsetTracks, CommandIsExactAndNamesAreData)
{
    EXPECT_TEXT(
        offsetTracksCommand(QStringLiteral("/R/ffmpeg"), QStringLiteral("/M/a.mts"), QStringLiteral("/C/o.txt")),
        QStringLiteral("\"/R/ffmpeg\" -fdebug ts -i /M/a.mts &>/C/o.txt"));
    EXPECT_TEXT(
        offsetTracksCommand(QStringLiteral("/R/ffmpeg"), QStringLiteral("/M/a;b.mts"), QStringLiteral("/C d/o.txt")),
        QStringLiteral("\"/R/ffmpeg\" -fdebug ts -i '/M/a;b.mts' &>'/C d/o.txt'"));
}

TEST(OffsetTracks, RunsTheToolAndReadsItsTranscript)
{
    const test::FakeResources resources;
    resources.makeTool(QStringLiteral("ffmpeg"), "cat >&2 <<'END'\n" TRACKS VIDEO0
                                                 "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1\nEND\n");
    EXPECT_EQ(shownList(offsetTracks(QStringLiteral("/M/a b.mts"), QString())), QStringLiteral("100"));
    EXPECT_EQ(resources.toolArguments(QStringLiteral("ffmpeg")).join(u'|'), QStringLiteral("-fdebug|ts|-i|/M/a b.mts"));
    resources.makeTool(QStringLiteral("ffmpeg"), "printf '\\377'\n");
    EXPECT_TRUE(offsetTracks(QStringLiteral("/M/a.mts"), QString()).isEmpty());
}

class PtsExits : public testing::TestWithParam<PtsRow>
{
};

TEST_P(PtsExits, TellTheirReason)
{
    const test::LogCapture log;
    EXPECT_TRUE(ptsDtsOffsetMs(test::text(GetParam().transcript)).isEmpty());
    EXPECT_TRUE(log.contains(test::text(GetParam().offsets))) << log.lines().join(u'|').toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Transcripts, PtsExits,
    testing::Values(
        PtsRow{"NoPts", "av_read_packet stream=0, pts=1, dts=1, s\n" STREAMS, "ptsDtsOffsetMs - fin :-( no pts"},
        PtsRow{"NoVideo", "x\n    Stream #0.1, 3, 1/1000: Audio: x\nav_read_packet stream=1, pts=4, dts=0, s",
               "ptsDtsOffsetMs - fin ;-) no video"},
        PtsRow{"NoAudio", "x\n    Stream #0.0, 3, 1/1000: Video: x\nav_read_packet stream=0, pts=4, dts=0, s",
               "ptsDtsOffsetMs - fin ;-) no audio"},
        PtsRow{"UnknownStream", STREAMS "av_read_packet stream=7, pts=100, dts=100, s",
               "pts/dts             :-( parse erreur, pas d'affectation sur chaque id (=>fin)"}),
    test::rowName<PtsRow>);

TEST(PtsOffsetLines, NameEveryStream)
{
    const test::LogCapture log;
    const test::AlertRecorder alerts;
    setDEBUGDEVForTests(1);
    const QVariantMap offsets = ptsDtsOffsetMs(QStringLiteral(
        STREAMS "av_read_packet stream=0, pts=100, dts=100, s\nav_read_packet stream=1, pts=225, dts=225, s"));
    setDEBUGDEVForTests(0);
    EXPECT_EQ(offsets.size(), 2);
    for (const char* line :
         {"id = 0, tb = 1000", "id = 1, tb = 1000", "pts v#0, ecart      = 0 ms", "dts v#0, ecart      = 0 ms",
          "pts a#1, ecart      = 125 ms", "dts a#1, ecart      = 125 ms"}) {
        EXPECT_TRUE(log.contains(test::text(line))) << line;
    }
    EXPECT_EQ(log.lines().filter(QStringLiteral("returnedMd : ")).size(), 1);
    EXPECT_TEXTS(alerts.shown(), QStringList{QStringLiteral("logs: ffmpeg > ptsDtsOffsetMs - fin")});
}

TEST(OffsetTracksLines, NameTheStreamsThatAreMeasured)
{
    const test::LogCapture log;
    const QList<int> offsets = offsetTracksFromTranscript(
        QStringLiteral(TRACKS "    Stream #0.2, 1, 1/1000: Audio: x\n    Stream #0.3, 1, 1/1000: Audio: x\n"
                              "    Stream #0.4, 1, 1/1000: Audio: x\n    Stream #0.5, 1, 1/1000: Audio: x\n" VIDEO0
                              "av_read_frame_internal stream=1, pts=1500, dts=1500, size=1"),
        QStringLiteral("streamCopy"));
    EXPECT_EQ(shownList(offsets), QStringLiteral("100"));
    const QString named = QStringLiteral("audioStreamId…       # ");
    EXPECT_TEXTS(log.lines().filter(named), (QStringList{named + u'1', named + u'2', named + u'3', named + u'4'}))
        << "the fifth finds no place";
    for (const char* line :
         {"wrapperOffset start  :  1.400000", "wrapperOffset        : 1.400000", "diffWrapperVideoOffse: 0.000000"}) {
        EXPECT_TRUE(log.contains(test::text(line))) << line;
    }
    EXPECT_EQ(log.lines().filter(QStringLiteral("returnArray          : ")).size(), 1);
}

TEST(OffsetTracksLines, CountWhatIsMissing)
{
    const test::LogCapture log;
    EXPECT_TRUE(offsetTracksFromTranscript(QStringLiteral(TRACKS VIDEO0), QString()).isEmpty());
    EXPECT_TRUE(
        log.contains(QStringLiteral("failure              :-( [audioPtsArray count]==0 || [videoPtsArray count]==1")));
}

} // namespace tavrix
