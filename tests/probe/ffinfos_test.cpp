// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffinfos.h"

#include "base/store/settings.h"
#include "probe/recordtext.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

namespace tavrix
{

namespace
{

using Lines = std::vector<std::string>;

// A banner around lines of one input block.
QString banner(const char* body)
{
    return QStringLiteral("FFmpeg version SVN\n") + QString::fromUtf8(body) +
           QStringLiteral("\nAt least one output file must be specified\n");
}

struct Row {
    const char* name;
    const char* body;
    Lines record;
};

} // namespace

class BannerLines : public testing::TestWithParam<Row>
{
};

TEST_P(BannerLines, GiveTheRecord)
{
    EXPECT_EQ(test::recordText(recordFromBanner(banner(GetParam().body))), GetParam().record);
}

INSTANTIATE_TEST_SUITE_P(
    Summary, BannerLines,
    testing::Values(
        Row{"All",
            "  Duration: 01:02:03.50, start: 1.400000, bitrate: 9800 kb/s",
            {"w_bitrate=i 9800", "w_duration=i 3723", "w_offset=f 1.4"}},
        Row{"NoDuration",
            "  Duration: N/A, start: 0.500000, bitrate: 9800 kb/s",
            {"w_bitrate=i 9800", "w_offset=f 0.5"}},
        Row{"ZeroDuration", "  Duration: 00:00:00.00, start: 0.000000, bitrate: N/A", {"w_offset=f 0"}},
        Row{"LessThanASecondIsPresentAsZero", "  Duration: 00:00:00.50", {"w_duration=i 0"}},
        Row{"NegativeStart", "  Duration: N/A, start: -0.250000", {"w_offset=f -0.25"}},
        Row{"OddNegativeStart", "  Duration: 00:00:09.77, start: 0.-33375", {"w_duration=i 9", "w_offset=f 0"}},
        Row{"ZeroBitrate", "  Duration: N/A, bitrate: 0 kb/s", {}},
        Row{"OneBitrate", "  Duration: N/A, bitrate: 1 kb/s", {"w_bitrate=i 1"}},
        Row{"WithoutColonBlank", "  Duration: ", {}},
        Row{"StreamsInItAreNotExamined", "  Duration: N/A, Stream #0.0: Audio: mp2, 48000 Hz", {}}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Input, BannerLines,
    testing::Values(
        Row{"Wrapper", "Input #0, mpeg, from 'x.mpg':", {"wrapper=s mpeg"}},
        Row{"FirstOfSeveralNames",
            "Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'x.mov':",
            {"wrapper=s mov,mp4,m4a,3gp,3g2,mj2"}},
        Row{"CommentWithoutFieldLeavesIt", "Input #0, avi, from 'x':\n    comment : Input here", {"wrapper=s avi"}},
        Row{"CommentWithFieldReplacesIt", "Input #0, avi, from 'x':\n    comment : Input , trap", {"wrapper=s trap"}},
        Row{"EmptyField", "Input #0, ", {"wrapper=s "}},
        Row{"OtherLines",
            "Input #0, avi, from 'x':\n  Metadata:\n    ISFT : Canon\n  Program 1\n"
            "    Stream #0.2: Data: tmcd / 0x64636D74\n    Stream #0.3: Subtitle: 0x0000",
            {"wrapper=s avi"}}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Audio, BannerLines,
    testing::Values(
        Row{"Full",
            "    Stream #0.1[0x1c0](fre): Audio: mp2, 48000 Hz, stereo, s16, 192 kb/s",
            {"a0_bitrate=i 192", "a0_channels=i 2", "a0_codec=s mp2", "a0_id=i 1", "a0_lang=s fre", "a0_rate=i 48000"}},
        Row{"LanguageNeedsTheIdentifier", "    Stream #0.1(eng): Audio: ac3", {"a0_codec=s ac3", "a0_id=i 1"}},
        Row{"LanguageBehindTheIdentifier",
            "    Stream #0.1[0x80](eng): Audio: ac3",
            {"a0_codec=s ac3", "a0_id=i 1", "a0_lang=s eng"}},
        Row{"CodecInAFieldOfItsOwn",
            "    Stream #0.1, 3, Audio: ac3, 48000 Hz",
            {"a0_channels=i 2", "a0_codec=s ac3", "a0_id=i 1", "a0_rate=i 48000"}},
        Row{"MonoInAnyCase", "    Stream #0.1: Audio: x, MoNo", {"a0_channels=i 1", "a0_codec=s x", "a0_id=i 1"}},
        Row{"MonoMustBeTheWholeField",
            "    Stream #0.1: Audio: x, mono ",
            {"a0_channels=i 2", "a0_codec=s x", "a0_id=i 1"}},
        Row{"TwoChannels", "    Stream #0.1: Audio: x, 2 Channels", {"a0_channels=i 2", "a0_codec=s x", "a0_id=i 1"}},
        Row{"Surround", "    Stream #0.1: Audio: x, 5.1", {"a0_channels=i 6", "a0_codec=s x", "a0_id=i 1"}},
        Row{"SurroundWithSide",
            "    Stream #0.1: Audio: x, 7.1(wide)",
            {"a0_channels=i 8", "a0_codec=s x", "a0_id=i 1"}},
        Row{"Count", "    Stream #0.1: Audio: x, 1 channels", {"a0_channels=i 1", "a0_codec=s x", "a0_id=i 1"}},
        Row{"SixChannels", "    Stream #0.1: Audio: x, 6 channels", {"a0_channels=i 6", "a0_codec=s x", "a0_id=i 1"}},
        Row{"SampleFormatFirst",
            "    Stream #0.1: Audio: mp2, 48000 Hz, s16, stereo",
            {"a0_channels=i 2", "a0_codec=s mp2", "a0_id=i 1", "a0_rate=i 48000"}},
        Row{"ProvisionalTwoIsReplaced",
            "    Stream #0.1: Audio: mp2, s16, mono",
            {"a0_channels=i 1", "a0_codec=s mp2", "a0_id=i 1"}},
        Row{"SecondStreamHasNoCount",
            "    Stream #0.1: Audio: ac3, 48000 Hz, stereo\n    Stream #0.2: Audio: ac3, 48000 Hz, 5.1",
            {"a0_channels=i 2", "a0_codec=s ac3", "a0_id=i 1", "a0_rate=i 48000", "a1_codec=s ac3", "a1_id=i 2",
             "a1_rate=i 48000"}},
        Row{"SecondStreamKeepsTheProvisionalTwo",
            "    Stream #0.1: Audio: ac3, s16\n    Stream #0.2: Audio: ac3, s16",
            {"a0_channels=i 2", "a0_codec=s ac3", "a0_id=i 1", "a1_channels=i 2", "a1_codec=s ac3", "a1_id=i 2"}},
        Row{"ZeroBitrate", "    Stream #0.1: Audio: x, mono, 0 kb/s", {"a0_channels=i 1", "a0_codec=s x", "a0_id=i 1"}},
        Row{"HugeSurroundSaturates",
            "    Stream #0.1: Audio: x, 99999999999.99999999999",
            {"a0_channels=i 2147483647", "a0_codec=s x", "a0_id=i 1"}}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Video, BannerLines,
    testing::Values(
        Row{"Full",
            "    Stream #0.0[0x1e0]: Video: mpeg2video, yuv420p, 720x576 [PAR 16:15 DAR 4:3], 9000 kb/s, 25 fps, 25 "
            "tbr, "
            "90k tbn, 50 tbc",
            {"v0_bitrate=i 9000", "v0_chroma=s yuv420p", "v0_codec=s mpeg2video", "v0_dar=s 4:3", "v0_fps=f 25",
             "v0_height=i 576", "v0_id=i 0", "v0_par=s 16:15", "v0_tbc=f 50", "v0_width=i 720"}},
        Row{"ThousandsInTbcAreDropped",
            "    Stream #0.0: Video: x, 90k tbc",
            {"v0_codec=s x", "v0_id=i 0", "v0_tbc=f 90"}},
        Row{"FractionOfTbcIsDropped",
            "    Stream #0.0: Video: x, 59.94 tbc",
            {"v0_codec=s x", "v0_id=i 0", "v0_tbc=f 59"}},
        Row{"Rate", "    Stream #0.0: Video: x, 29.97 tbr", {"v0_codec=s x", "v0_fps=f 29.97", "v0_id=i 0"}},
        Row{"SizeAlone",
            "    Stream #0.0: Video: x, 640x480",
            {"v0_codec=s x", "v0_height=i 480", "v0_id=i 0", "v0_width=i 640"}},
        Row{"AspectBehindTheRates", "    Stream #0.0: Video: x, PAR 1:1 DAR 16:9", {"v0_codec=s x", "v0_id=i 0"}},
        Row{"BareNumberIsNoChroma", "    Stream #0.0: Video: x, 12", {"v0_codec=s x", "v0_id=i 0"}},
        Row{"FractionIsNoChroma", "    Stream #0.0: Video: x, 1/90000", {"v0_codec=s x", "v0_id=i 0"}},
        Row{"ChromaAsPrinted",
            "    Stream #0.0: Video: x, yuv420p ",
            {"v0_chroma=s yuv420p ", "v0_codec=s x", "v0_id=i 0"}},
        Row{"CodecWithTag",
            "    Stream #0.0: Video: avc1 / 0x31637661, yuv420p",
            {"v0_chroma=s yuv420p", "v0_codec=s avc1 / 0x31637661", "v0_id=i 0"}},
        Row{"TwoStreams",
            "    Stream #0.0: Video: a, 1 tbr\n    Stream #0.3: Video: b, 2 tbr",
            {"v0_codec=s a", "v0_fps=f 1", "v0_id=i 0", "v1_codec=s b", "v1_fps=f 2", "v1_id=i 3"}},
        Row{"NamedAudioToo", "    Stream #0.0: Video: Audio: x", {"a0_codec=s x", "a0_id=i 0"}},
        Row{"NothingBehindTimes",
            "    Stream #0.0: Video: a, x",
            {"v0_codec=s a", "v0_height=i 0", "v0_id=i 0", "v0_width=i 0"}},
        Row{"UnclosedAspect",
            "    Stream #0.0: Video: a, 4x3 [PAR 1:1 DAR 4:3",
            {"v0_codec=s a", "v0_dar=s 4:3", "v0_height=i 3", "v0_id=i 0", "v0_par=s 1:1", "v0_width=i 4"}},
        Row{"ColonFormWithADotLater",
            "    Stream #0:0: Video: avc1.64001f",
            {"v0_codec=s avc1.64001f", "v0_id=i 64001"}}),
    test::rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Hostile, BannerLines,
    testing::Values(
        Row{"ColonFormRejectsAll", "Input #0, avi, from 'x':\n    Stream #0:0: Video: h264, yuv420p", {}},
        Row{"ColonFormOfAudioRejectsAll", "    Stream #0.0: Video: a\n    Stream #0:1(eng): Audio: aac, 48000 Hz", {}},
        Row{"ColonFormOfDataIsIgnored",
            "    Stream #0.0: Video: a\n    Stream #0:1: Data: none",
            {"v0_codec=s a", "v0_id=i 0"}},
        Row{"TitleWithStreamIsSkipped",
            "    title : Stream #1 Audio: x, 48000 Hz\n    Stream #0.1: Audio: y",
            {"a0_codec=s y", "a0_id=i 1"}},
        Row{"CommentWithStreamIsSkipped",
            "    comment : Stream #1 Video: x, 1x1\n    Stream #0.0: Video: y",
            {"v0_codec=s y", "v0_id=i 0"}},
        Row{"SecondSpecifierInACodecName", "    Stream #0.0: Video: a, Stream #b", {}},
        Row{"OnlyTheWords", "    Stream #.Audio: ", {"a0_codec=s ", "a0_id=i 0"}},
        Row{"OnlySeparators",
            ", , , ,\nStream #., , , Video: , , x, ",
            {"v0_chroma=s ", "v0_codec=s ", "v0_height=i 0", "v0_id=i 0", "v0_width=i 0"}}),
    test::rowName<Row>);

namespace
{

struct BlockRow {
    const char* name;
    const char* text;
    Lines record;
};

} // namespace

class BannerBlocks : public testing::TestWithParam<BlockRow>
{
};

TEST_P(BannerBlocks, AreChosen)
{
    EXPECT_EQ(test::recordText(recordFromBanner(test::text(GetParam().text))), GetParam().record);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, BannerBlocks,
    testing::Values(
        BlockRow{"Nothing", nullptr, {}}, BlockRow{"Empty", "", {}},
        BlockRow{"NoEndMarker", "x\nInput #0, avi, from 'x':\n  Duration: 00:00:05.00", {}},
        BlockRow{"OutputIsAnEndMarker", "x\nInput #0, avi, from 'x':\nOutput #0, mov, to 'y':", {"wrapper=s avi"}},
        BlockRow{"OutputBlockIsNotRead",
                 "x\nInput #0, avi, from 'x':\nOutput #0, mov, to 'y':\n    Stream #0.0: Video: mpeg4, yuv420p",
                 {"wrapper=s avi"}},
        BlockRow{"LastBlockWins",
                 "x\nInput #0, avi, from 'x':\nAt least one output file must be specified\n"
                 "Input #0, mpeg, from 'y':\nAt least one output file must be specified",
                 {"wrapper=s mpeg"}},
        BlockRow{"LastBlockWithoutMarkerDoesNotWin",
                 "x\nInput #0, avi, from 'x':\nAt least one output file must be specified\nInput #0, mpeg, from 'y':",
                 {"wrapper=s avi"}},
        BlockRow{
            "FirstMarkerBelowEnds",
            "x\nInput #0, avi, from 'x':\nOutput #0, mov, to 'y':\n  Duration: 00:00:05.00\nOutput #0, mov, to 'z':",
            {"wrapper=s avi"}},
        BlockRow{"InputInTheFirstLine", "Input #0, avi, from 'x':\nOutput #0, mov, to 'y':", {"wrapper=s avi"}},
        BlockRow{"NoInputReadsFromTheTop", "  Duration: 00:00:05.00\nOutput #0, mov, to 'y':", {"w_duration=i 5"}},
        BlockRow{"MarkerInTheFirstLineIsNotSeen", "Output #0, mov\nInput #0, avi, from 'x':", {}},
        BlockRow{"InputBelowTheLastMarker", "  Duration: 00:00:05.00\nOutput #0, mov\nInput #0, avi, from 'x':", {}},
        BlockRow{"InputDirectlyBelowTheTopMarker", "Output #0, mov\nOutput #0, avi\nInput #0, avi", {}},
        BlockRow{"BothInOneLine", "x\nInput #0, avi, from 'Output #0, z.avi':\nOutput #0, mov", {}},
        BlockRow{
            "OtherLineEnds", "x\r\nInput #0, avi, from 'x':\r\n\r\nOutput #0, mov, to 'y':\r\n", {"wrapper=s avi"}},
        BlockRow{"AllNewlineCharacters", "x\u2028Input #0, avi, from 'x':\u0085Output #0, mov", {"wrapper=s avi"}}),
    test::rowName<BlockRow>);

TEST(FfInfos, NoPathAndNoBannerGiveNothing)
{
    EXPECT_FALSE(ffInfos(QString(), QString()).has_value());
    EXPECT_FALSE(ffInfos(QString(), QStringLiteral("")).has_value());
}

TEST(FfInfos, NoPathAndAnotherTextGiveAnEmptyRecord)
{
    const auto record = ffInfos(QString(), QStringLiteral("junk"));
    ASSERT_TRUE(record.has_value());
    EXPECT_TRUE(record->isEmpty());
}

TEST(FfInfos, PathWithoutBannerGivesAnEmptyRecordWithoutARun)
{
    const auto record = ffInfos(QStringLiteral("/nowhere/x.mts"), QString());
    ASSERT_TRUE(record.has_value());
    EXPECT_TRUE(record->isEmpty());
}

TEST(FfInfos, AnalysisNeedsBothTexts)
{
    const QString interlacing = QStringLiteral("PFF");
    EXPECT_FALSE(analysisFf(QString(), interlacing).has_value());
    EXPECT_FALSE(analysisFf(QStringLiteral("junk"), QString()).has_value());
    EXPECT_FALSE(analysisFf(QStringLiteral(""), interlacing).has_value());
    EXPECT_EQ(analysisFf(QStringLiteral("junk"), interlacing), std::optional<MediaInfoRecord>(MediaInfoRecord()));
    const auto record = analysisFf(banner("Input #0, avi, from 'x':"), interlacing);
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(test::recordText(*record), Lines{"wrapper=s avi"});
}

TEST(FfInfos, SkeletonHasItsOwnKeys)
{
    const Lines expected = {"a1bitrate=i 0", "a1channels=i 0", "a1codec=s ",   "a1id=i 0",   "a1lang=s ",
                            "a1rate=i 0",    "vbitrate=i 0",   "vchroma=s ",   "vcodec=s ",  "vdar=s ",
                            "vfps=f 0",      "vheight=i 0",    "vid=i 0",      "vpar=s ",    "vtbc=i 0",
                            "vwidth=i 0",    "wbitrate=s ",    "wduration=s ", "woffset=s ", "wrapper=s "};
    EXPECT_EQ(test::recordText(analysisDico()), expected);
    EXPECT_FALSE(analysisDico().value(QStringLiteral("vcodec")).toString().isNull());
}

// Every prefix and every text with one character taken out of a real banner must be read without a fault.
TEST(FfInfos, DamagedBannersNeverFault)
{
    const QString whole =
        banner("Input #0, mpegts, from '00000.MTS':\n"
               "  Duration: 00:00:09.98, start: 1.400000, bitrate: 13341 kb/s\n"
               "    Stream #0.0[0x1011]: Video: h264, yuv420p, 1920x1080 [PAR 1:1 DAR 16:9], 25 fps, 25 "
               "tbr, 90k tbn, 50 tbc\n"
               "    Stream #0.1[0x1100](eng): Audio: ac3, 48000 Hz, 5.1, s16, 192 kb/s");
    qsizetype largest = 0;
    for (qsizetype i = 0; i < whole.size(); ++i) {
        largest = std::max(largest, recordFromBanner(whole.left(i)).size());
        QString damaged = whole;
        damaged.remove(i, 1);
        largest = std::max(largest, recordFromBanner(damaged).size());
    }
    EXPECT_EQ(largest, recordFromBanner(whole).size());
}

namespace
{

const char* const oneClip = "Input #0, avi, from 'x':\n  Duration: N/A, bitrate: 5 kb/s\n"
                            "    Stream #0.0: Video: mjpeg, 30 tbr";

QStringList linesOfTheParser(unsigned char debug)
{
    const test::LogCapture log;
    setDEBUG(debug);
    EXPECT_TRUE(ffInfos(QString(), banner(oneClip)).has_value());
    setDEBUG(0);
    return log.lines();
}

} // namespace

TEST(FfInfosLines, TheStagesAreLoggedAndTheDetailsWhenDebugging)
{
    const QStringList always = linesOfTheParser(0);
    EXPECT_TRUE(always.contains(QStringLiteral("ffInfos - debInt")));
    EXPECT_EQ(always.filter(QStringLiteral("linesResultMArray : ")).size(), 1);
    for (const QString& detail :
         {QStringLiteral("currentLineStr : "), QStringLiteral("infosDico v#0: "), QStringLiteral("infosDico : ")}) {
        EXPECT_TRUE(always.filter(detail).isEmpty()) << detail.toStdString();
        EXPECT_FALSE(linesOfTheParser(1).filter(detail).isEmpty()) << detail.toStdString();
    }
}

TEST(FfInfosAlerts, AreShownWhenDebugging)
{
    const test::AlertRecorder alerts;
    EXPECT_FALSE(ffInfos(QString(), QStringLiteral("")).has_value());
    EXPECT_TRUE(ffInfos(QString(), banner(oneClip)).has_value());
    EXPECT_TEXTS(alerts.shown(), QStringList());
    setDEBUG(1);
    EXPECT_FALSE(ffInfos(QString(), QStringLiteral("")).has_value());
    setDEBUG(0);
    EXPECT_TEXTS(alerts.shown(),
                 QStringList{QStringLiteral("ffmpeg > ffInfos: :-(: if ([verboseStr isEqualToString:@''])")});
    setDEBUGDEVForTests(1);
    EXPECT_TRUE(ffInfos(QString(), banner(oneClip)).has_value());
    setDEBUGDEVForTests(0);
    EXPECT_EQ(alerts.shown().size(), 3);
}

} // namespace tavrix
