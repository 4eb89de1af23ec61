// SPDX-License-Identifier: GPL-3.0-or-later
// Whole transcripts, from lines of installed versions. Those marked "by hand" are written after the source and
// documentation of versions that were not at hand.
#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/transcript.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavrix::front
{

namespace
{

std::string transcriptOf(const TranscriptNames& names, const std::vector<std::string>& lines, int status,
                         bool levelsMarked = false)
{
    Transcript transcript(names, levelsMarked);
    std::string text;
    const auto add = [&](const std::vector<TranscriptLine>& translated) {
        for (const TranscriptLine& line : translated) {
            text += line.text + line.end;
        }
    };
    for (const std::string& line : lines) {
        add(transcript.translate(line, '\n'));
    }
    add(transcript.finish(status));
    return text;
}

const TranscriptNames oneInput = {{{"file:/m/a b.MTS", "/m/a b.MTS"}}, {}};

TEST(TranscriptFailures, AreToldOnceInTheOldWords)
{
    EXPECT_EQ(transcriptOf(oneInput, {"file:/m/a b.MTS: Invalid data found when processing input"}, 1),
              "/m/a b.MTS: Unknown format\n");
    EXPECT_EQ(transcriptOf(oneInput, {"file:/m/a b.MTS: Input/output error"}, 1), "/m/a b.MTS: I/O error occured\n");
    // 6.1 and 7.x, by hand
    EXPECT_EQ(transcriptOf(oneInput,
                           {"[in#0 @ 0x55d0c0de] Error opening input: Invalid data found when processing input",
                            "Error opening input file file:/m/a b.MTS.",
                            "Error opening input files: Invalid data found when processing input"},
                           183),
              "/m/a b.MTS: Unknown format\n");
    EXPECT_EQ(transcriptOf(oneInput, {"[in#0/mpegts @ 0x1] Error during demuxing: Input/output error"}, 1),
              "/m/a b.MTS: I/O error occured\n");
    EXPECT_EQ(transcriptOf(oneInput, {"[in#0 @ 0x1] Error opening input: Server returned 404 Not Found"}, 1),
              "/m/a b.MTS: Error while opening file (Server returned 404 Not Found)\n");
}

TEST(TranscriptFailures, AFailureWithoutAReasonIsToldWithTheRemarkBeforeIt)
{
    EXPECT_EQ(transcriptOf(oneInput,
                           {"[h264 @ 0x55d0c0de] non-existing PPS 0 referenced", "Error while decoding stream #0:0",
                            "Conversion failed!"},
                           1),
              "[h264 @ 0x55d0c0de] non-existing PPS 0 referenced\nError while decoding stream #0.0\n"
              "/m/a b.MTS: Error while decoding stream #0.0\n");
    EXPECT_TRUE(transcriptOf(oneInput, {"Conversion failed!"}, 1).starts_with("/m/a b.MTS: the conversion failed\n"));
}

TEST(TranscriptFailures, NoUsableStreamIsMissingParameters)
{
    const std::vector<std::string> lines = {
        "[mpegts @ 0x1] Could not find codec parameters for stream 0 (Video: h264, none): unspecified size",
        "Input #0, mpegts, from 'file:/m/a b.MTS':",
        "  Stream #0:0[0x100]: Video: h264 ([27][0][0][0] / 0x001B), none, 90k tbr, 90k tbn",
        "At least one output file must be specified"};
    EXPECT_TRUE(transcriptOf(oneInput, lines, 1).ends_with("\n/m/a b.MTS: could not find codec parameters\n"));
    EXPECT_FALSE(transcriptOf(oneInput, lines, 0).ends_with("parameters\n"));
    std::vector<std::string> withSound = lines;
    withSound.insert(withSound.end() - 1, "  Stream #0:1[0x101]: Audio: ac3, 48000 Hz, stereo, fltp, 192 kb/s");
    EXPECT_FALSE(transcriptOf(oneInput, withSound, 1).ends_with("parameters\n"));
}

// Version 7 names no clip on this line, and nothing but the clip's name in front of it makes it a failure for a reader.
TEST(TranscriptFailures, MissingParametersAreToldOfTheClip)
{
    EXPECT_EQ(transcriptOf(oneInput,
                           {"[mpegts @ 0x1] Could not detect TS packet size, defaulting to non-FEC/DVHS",
                            "[in#0/mpegts @ 0x2] could not find codec parameters",
                            "Error opening input file file:/m/a b.MTS.", "Error opening input files: End of file"},
                           187),
              "[mpegts @ 0x1] Could not detect TS packet size, defaulting to non-FEC/DVHS\n"
              "/m/a b.MTS: could not find codec parameters\n");
}

TEST(TranscriptNamesAreShown, AsTheCallerGaveThem)
{
    const TranscriptNames names = {{{"file:-x.mts", "-x.mts"}}, {{"file:/proc/self/fd/5", "/out/a%d.mp4"}}};
    EXPECT_EQ(transcriptOf(names, {"Output #0, mp4, to 'file:/proc/self/fd/5':"}, 0),
              "Output #0, mp4, to '/out/a%d.mp4':\n");
    EXPECT_EQ(transcriptOf(names, {"[mp4 @ 0x1] /proc/self/fd/5: x"}, 0), "[mp4 @ 0x1] /out/a%d.mp4: x\n");
    EXPECT_EQ(transcriptOf(names, {"/proc/self/fd/51"}, 0), "/proc/self/fd/51\n");
    EXPECT_EQ(transcriptOf(names, {"Input #0, mpegts, from 'file:-x.mts':"}, 0), "Input #0, mpegts, from '-x.mts':\n");
}

TEST(TranscriptOrder, MappingStandsBehindTheOutput)
{
    const std::vector<std::string> lines = {
        "Input #0, avi, from 'file:/m/a b.MTS':",
        "  Stream #0:0: Video: mjpeg, yuvj420p, 640x480, 30 fps, 30 tbr, 30 tbn",
        "Stream mapping:",
        "  Stream #0:0 -> #0:0 (mjpeg (native) -> mpeg4 (native))",
        "Press [q] to stop, [?] for help",
        "[mpeg4 @ 0x1] a remark",
        "Output #0, mov, to 'x.mov':",
        "  Stream #0:0: Video: mpeg4, yuv420p, 640x480, q=2-31, 200 kb/s, 30 fps, 15360 tbn",
        "frame=    1 fps=0.0 q=2.0 size=       0kB time=00:00:00.03 bitrate=  10.5kbits/s speed=1.86x    ",
    };
    EXPECT_EQ(transcriptOf(oneInput, lines, 0),
              "Input #0, avi, from '/m/a b.MTS':\n"
              "    Stream #0.0: Video: mjpeg, yuvj420p, 640x480, 30 fps, 30 tbr, 30 tbn, 30 tbc\n"
              "[mpeg4 @ 0x1] a remark\n"
              "Output #0, mov, to 'x.mov':\n"
              "    Stream #0.0: Video: mpeg4, yuv420p, 640x480, q=2-31, 200 kb/s, 15360 tbn, 30 tbc\n"
              "Stream mapping:\n"
              "  Stream #0.0 -> #0.0\n"
              "Press [q] to stop encoding\n"
              "frame=    1 fps=  0 q=2.0 size=       0kB time=0.03 bitrate=  10.5kbits/s    \n");
}

TEST(TranscriptOrder, MappingIsPrintedWhenNoOutputFollows)
{
    EXPECT_EQ(transcriptOf({}, {"Stream mapping:", "  Stream #0:0 -> #0:0 (copy)", "Error"}, 1),
              "Error\nStream mapping:\n  Stream #0.0 -> #0.0\n");
}

// Version 7 prints the summary before the last line of progress.
TEST(TranscriptOrder, SummaryStandsBehindTheLastProgress)
{
    const std::string progress = "frame=    0 fps=0.0 q=0.0 size=       0KiB time=N/A bitrate=N/A speed=N/A    ";
    const std::string summary = "[out#0/null @ 0x1] video:0KiB audio:0KiB subtitle:0KiB other streams:0KiB global "
                                "headers:0KiB muxing overhead: unknown";
    const std::string last =
        "frame=    1 fps=0.0 q=0.0 Lsize=       0KiB time=00:00:00.01 bitrate=   0.0kbits/s speed=2.5x    ";
    const std::string classicLast = "frame=    1 fps=  0 q=0.0 Lsize=       0kB time=0.01 bitrate=   0.0kbits/s    \n";
    const std::string classicSummary = "video:0kB audio:0kB global headers:0kB muxing overhead unknown\n";
    EXPECT_TRUE(transcriptOf({}, {progress, summary, last}, 0).ends_with(classicLast + classicSummary));
    EXPECT_EQ(transcriptOf({}, {last, summary}, 0), classicLast + classicSummary);
    EXPECT_EQ(transcriptOf({}, {summary}, 0), classicSummary);
}

TEST(TranscriptOrder, AnEmptySummaryBeforeTheOnlyPictureIsNoEmptyOutput)
{
    const std::string summary = "[out#0/mp4 @ 0x1] video:0KiB audio:0KiB subtitle:0KiB other streams:0KiB global "
                                "headers:0KiB muxing overhead: unknown";
    Transcript transcript({}, false);
    EXPECT_TRUE(transcript.translate(summary, '\n').empty());
    EXPECT_TRUE(transcript.findings().outputIsEmpty());
    const std::string last = "frame=    1 fps=0.0 q=0.0 Lsize=       0KiB time=00:00:00.01 bitrate=   0.0kbits/s";
    EXPECT_EQ(transcript.translate(last, '\n').size(), 2U);
    EXPECT_FALSE(transcript.findings().outputIsEmpty());
}

TEST(TranscriptDescription, IsIndentedAlikeInEveryVersion)
{
    const std::vector<std::string> lines = {
        "Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'file:/m/a b.MTS':",
        "  Metadata:",
        "    major_brand     : qt  ",
        "  Stream #0:0[0x1]: Video: mjpeg, yuvj420p, 640x480, 30 fps, 30 tbr, 30 tbn",
        "      Metadata:",
        "        title           : Metadata:",
        "      Side data:",
        "        displaymatrix: rotation of -90.00 degrees",
        "  Stream #0:1[0x2](eng): Data: none (tmcd / 0x64636D74), 0 kb/s (default)",
        "      a               : b",
    };
    EXPECT_EQ(transcriptOf(oneInput, lines, 0),
              "Input #0, mov,mp4,m4a,3gp,3g2,mj2, from '/m/a b.MTS':\n"
              "  Metadata:\n"
              "    major_brand     : qt  \n"
              "    Stream #0.0: Video: mjpeg, yuvj420p, 640x480, 30 fps, 30 tbr, 30 tbn, 30 tbc\n"
              "    Metadata:\n"
              "      title           : Metadata:\n"
              "    Side data:\n"
              "      displaymatrix: rotation of -90.00 degrees\n"
              "    Stream #0.1(eng): Data: tmcd / 0x64636D74, 0 kb/s\n"
              "      a               : b\n");
}

TEST(TranscriptLevels, OnlyTheProbedLinesOfTheDebugLevelStay)
{
    const std::vector<std::string> lines = {
        "[info] Input #0, mpegts, from 'file:/m/a b.MTS':",
        "[info]   Duration: 00:00:02.00, start: 1.4, bitrate: 1 kb/s",
        "[h264 @ 0x1] [debug] nal_unit_type: 9(AUD), nal_ref_idc: 0",
        "[vist#0:0/h264 @ 0x1] [dec:h264 @ 0x2] [verbose] Starting thread...",
        "[debug] timestamp discontinuity for stream #0:1 (id=4352, type=audio): 100, new offset= -100",
        "[verbose] *** 2 dup!",
        "[verbose] 35 packets read",
        "[mpegts @ 0x1] [warning] a remark",
        "[vist#0:0/h264 @ 0x1] [dec:h264 @ 0x2] [error] another",
        "[error] an error",
        "no level",
    };
    EXPECT_EQ(transcriptOf(oneInput, lines, 0, true),
              "Input #0, mpegts, from '/m/a b.MTS':\n"
              "  Duration: 00:00:02.00, start: 1.4, bitrate: 1 kb/s\n"
              "timestamp discontinuity for stream #0.1 (id=4352, type=audio): 100, new offset= -100\n"
              "*** 2 dup!\n"
              "[mpegts @ 0x1] a remark\n"
              "[vist#0:0/h264 @ 0x1] [dec:h264 @ 0x2] another\n"
              "an error\n"
              "no level\n");
}

TEST(TranscriptPackets, HaveTheirOldNames)
{
    EXPECT_EQ(transcriptOf({}, {"[mpegts @ 0x1] ff_read_packet stream=0, pts=1, dts=1, size=9"}, 0),
              "[mpegts @ 0x1] av_read_packet stream=0, pts=1, dts=1, size=9\n");
    EXPECT_EQ(transcriptOf({}, {"read_frame_internal stream=1, pts=NOPTS, dts=2"}, 0),
              "av_read_frame_internal stream=1, pts=NOPTS, dts=2\n");
    EXPECT_EQ(transcriptOf({}, {"av_read_frame_internal stream=1"}, 0), "av_read_frame_internal stream=1\n");
}

TEST(Banner, NamesTheOldRevision)
{
    const std::string text = transcriptOf({}, {"ffmpeg version 5.1.9-0+deb12u1 Copyright (c) 2000-2026 the FFmpeg"}, 0);
    EXPECT_EQ(text, "FFmpeg version git-N-25800-g0000000, Copyright (c) 2000-2010 the FFmpeg developers\n"
                    "  on top of ffmpeg 5.1.9-0+deb12u1\n");
    EXPECT_EQ(installedVersion("ffmpeg version N-118000-gabc Copyright"), "N-118000-gabc");
    EXPECT_FALSE(installedVersion("  libavutil 57"));
}

} // namespace

} // namespace tavrix::front
