// SPDX-License-Identifier: GPL-3.0-or-later
// Single lines of installed versions, in the classic dialect. Rows marked "by hand" are written after the source and
// documentation of versions that were not at hand; all others were printed by 5.1.
#include "tools/ffmpeg/errorlines.h"
#include "tools/ffmpeg/linesplitter.h"
#include "tools/ffmpeg/metadatalines.h"
#include "tools/ffmpeg/progresslines.h"
#include "tools/ffmpeg/streamlines.h"
#include "tools/ffmpeg/textpieces.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavrix::front
{

namespace
{

struct StreamRow {
    const char* installed;
    const char* classic;
    bool ofOutput = false;
    bool identifiers = true;
};

// A phone's rate a little over 30 would be halved, and come out with 25 pictures a second.
TEST(StreamLines, ARateWithinHalfAPercentOfAStandardOneIsThatOne)
{
    const struct {
        const char* printed;
        const char* classic;
    } rows[] = {
        {"30.01", "30"},    {"30.02", "30"},    {"30.12", "30"},   {"30.15", "30"},      {"30.2", "30.2"},
        {"29.97", "29.97"}, {"29.98", "29.97"}, {"29.99", "30"},   {"30", "30"},         {"29.83", "29.97"},
        {"25.12", "25"},    {"24.9", "25"},     {"24", "24"},      {"23.98", "23.98"},   {"24.03", "24"},
        {"50.01", "50"},    {"59.94", "59.94"}, {"59.9", "59.94"}, {"60.29", "60"},      {"15", "15"},
        {"12.5", "12.5"},   {"10.43", "10.43"}, {"48", "48"},      {"120.01", "120.01"}, {"90k", "90k"},
        {"1k", "1k"},       {"1000", "1000"},   {"0.5", "0.5"},
    };
    for (const auto& row : rows) {
        const std::string rate = row.printed;
        std::string installed = "  Stream #0:0: Video: mpeg4, yuv420p, 640x480, ";
        installed.append(rate).append(" fps, ").append(rate).append(" tbr, 90k tbn");
        const auto line = classicStreamLine(installed, {});
        ASSERT_TRUE(line);
        EXPECT_NE(line->find(std::string(" ") + row.classic + " tbr,"), std::string::npos) << rate << ": " << *line;
    }
}

TEST(StreamLines, BecomeClassic)
{
    const StreamRow rows[] = {
        {"  Stream #0:0[0x1011]: Video: h264 (High) (HDMV / 0x564D4448), yuv420p(tv, bt709, progressive), 1280x720 "
         "[SAR 1:1 "
         "DAR 16:9], 59.94 fps, 59.94 tbr, 90k tbn",
         "    Stream #0.0[0x1011]: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 59.94 fps, 59.94 tbr, 90k tbn, "
         "119.88 tbc"},
        {"  Stream #0:1[0x1100](eng): Audio: ac3 (AC-3 / 0x332D4341), 48000 Hz, 5.1(side), fltp, 448 kb/s",
         "    Stream #0.1[0x1100](eng): Audio: ac3, 48000 Hz, 5.1, s16, 448 kb/s"},
        {"  Stream #0:0[0x1](eng): Video: h264 (avc1 / 0x31637661), yuv420p, 1280x720 [SAR 1:1 DAR 16:9], 2998 kb/s, "
         "29.97 "
         "fps, 29.97 tbr, 30k tbn (default)",
         "    Stream #0.0(eng): Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 2998 kb/s, 29.97 fps, 29.97 tbr, "
         "30k "
         "tbn, 59.94 tbc",
         false, false},
        // 4.x, by hand: a tbc field of its own
        {"    Stream #0:0(eng): Video: h264 (High) (avc1 / 0x31637661), yuv420p, 1280x720 [SAR 1:1 DAR 16:9], 2998 "
         "kb/s, "
         "29.97 fps, 29.97 tbr, 30k tbn, 60k tbc (default)",
         "    Stream #0.0(eng): Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 2998 kb/s, 29.97 fps, 29.97 tbr, "
         "30k "
         "tbn, 60k tbc",
         false, false},
        // 7.x, by hand
        {"  Stream #0:0[0x1011]: Video: h264 (High) (HDMV / 0x564D4448), yuv420p(tv, bt709, top first), 1920x1080 [SAR "
         "1:1 "
         "DAR 16:9], 25 fps, 25 tbr, 90k tbn, Start-Time 1.400s",
         "    Stream #0.0[0x1011]: Video: h264, yuv420p, 1920x1080 [PAR 1:1 DAR 16:9], 25 fps, 25 tbr, 90k tbn, 50 "
         "tbc"},
        {"  Stream #0:0: Video: mjpeg (Baseline) (MJPG / 0x47504A4D), yuvj422p(pc, bt470bg/unknown/unknown), 640x480 "
         "[SAR "
         "1:1 DAR 4:3], 5606 kb/s, 30 fps, 30 tbr, 30 tbn",
         "    Stream #0.0: Video: mjpeg, yuvj422p, 640x480 [PAR 1:1 DAR 4:3], 5606 kb/s, 30 fps, 30 tbr, 30 tbn, 30 "
         "tbc"},
        {"  Stream #0:0[0x1e0]: Video: mpeg2video (Main), yuv420p(tv, top first), 720x576, SAR 64:45 DAR 16:9, max. "
         "9000 "
         "kb/s, 25 fps, 25 tbr, 90k tbn",
         "    Stream #0.0[0x1e0]: Video: mpeg2video, yuv420p, 720x576, PAR 64:45 DAR 16:9, 9000 kb/s, 25 fps, 25 tbr, "
         "90k "
         "tbn, 50 tbc"},
        {"  Stream #0:0[0x100]: Video: h264 ([27][0][0][0] / 0x001B), none, 90k tbr, 90k tbn",
         "    Stream #0.0[0x100]: Video: h264, 90k tbr, 90k tbn, 180k tbc"},
        {"  Stream #0:0[0x1011], 180, 1/90000: Video: h264 (High), 1 reference frame ([27][0][0][0] / 0x001B), "
         "yuv420p(progressive, left), 1280x720 (1280x738) [SAR 1:1 DAR 16:9], 0/1, 23.98 fps, 23.98 tbr, 90k tbn",
         "    Stream #0.0[0x1011], 180, 1/90000: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 23.98 fps, 23.98 "
         "tbr, "
         "90k tbn, 47.95 tbc"},
        {"  Stream #0:0: Video: mpeg4 (mp4v / 0x7634706D), yuv420p(tv, progressive), 480x272 [SAR 136:135 DAR 16:9], "
         "q=2-31, 250 kb/s, 29.97 fps, 30k tbn",
         "    Stream #0.0: Video: mpeg4, yuv420p, 480x272 [PAR 136:135 DAR 16:9], q=2-31, 250 kb/s, 30k tbn, 29.97 tbc",
         true},
        {"  Stream #0:2[0x3](eng): Data: none (tmcd / 0x64636D74), 0 kb/s",
         "    Stream #0.2(eng): Data: tmcd / 0x64636D74, 0 kb/s", false, false},
        {"  Stream #0:2: Data: none (m2v1 / 0x3176326D)", "    Stream #0.2: Data: m2v1 / 0x3176326D"},
        {"  Stream #0:2[0x1200]: Subtitle: hdmv_pgs_subtitle ([144][0][0][0] / 0x0090), 1920x1080",
         "    Stream #0.2[0x1200]: Subtitle: hdmv_pgs_subtitle, 1920x1080"},
        {"  Stream #0:1(und): Audio: pcm_s24le (lpcm / 0x6D63706C), 96000 Hz, quad, s32 (24 bit), 9216 kb/s (default)",
         "    Stream #0.1(und): Audio: pcm_s24le, 96000 Hz, 4 channels, s32, 9216 kb/s"},
        {"  Stream #0:1: Audio: mp3 (U[0][0][0] / 0x0055), 44100 Hz, mono, fltp, 64 kb/s",
         "    Stream #0.1: Audio: mp3, 44100 Hz, mono, s16, 64 kb/s"},
        {"  Stream #0:12: Audio: pcm_f32le ([3][0][0][0] / 0x0003), 48000 Hz, 1 channels (FC), flt, 1536 kb/s",
         "    Stream #0.12: Audio: pcm_f32le, 48000 Hz, 1 channels, flt, 1536 kb/s"},
        {"  Stream #0:1: Audio: dts (DTS-HD MA) ([134][0][0][0] / 0x0086), 48000 Hz, 7.1, s32p (24 bit)",
         "    Stream #0.1: Audio: dca, 48000 Hz, 7.1, s32p"},
    };
    for (const StreamRow& row : rows) {
        const auto line = classicStreamLine(row.installed, {row.ofOutput, row.identifiers});
        ASSERT_TRUE(line.has_value()) << row.installed;
        EXPECT_EQ(*line, row.classic);
    }
}

TEST(StreamLines, OtherLinesAreNotTouched)
{
    for (const char* line : {"Stream mapping:", "  Stream #0:0 -> #0:0 (copy)", "", "  Stream #", "  Stream #0:",
                             "  Stream #0:1", "Stream #0:0: Video: h264", "    title           : Stream"}) {
        EXPECT_FALSE(classicStreamLine(line, {}).has_value()) << line;
    }
}

TEST(StreamLines, KnowTheContainersWithIdentifiers)
{
    EXPECT_TRUE(formatShowsIdentifiers("mpegts"));
    EXPECT_TRUE(formatShowsIdentifiers("mpeg"));
    EXPECT_FALSE(formatShowsIdentifiers("mov,mp4,m4a,3gp,3g2,mj2"));
    EXPECT_EQ(describedStream("  Stream #0:3[0x1](eng): Audio: aac"), 3);
    EXPECT_FALSE(describedStream("  Stream #0:3 -> #0:0").has_value());
}

TEST(ProgressLines, HaveTheTimeInSeconds)
{
    struct {
        const char* installed;
        const char* classic;
    } const rows[] = {
        {"frame=  250 fps= 35 q=3.0 Lsize=   32134kB time=00:00:10.00 bitrate=26324.3kbits/s speed=1.41x    ",
         "frame=  250 fps= 35 q=3.0 Lsize=   32134kB time=10.00 bitrate=26324.3kbits/s    "},
        {"frame=   79 fps=0.0 q=8.7 size=       0kB time=00:00:02.60 bitrate=   0.1kbits/s dup=0 drop=75 speed=5.02x   "
         " ",
         "frame=   79 fps=  0 q=8.7 size=       0kB time=2.60 bitrate=   0.1kbits/s dup=0 drop=75    "},
        {"frame=    1 fps=0.0 q=-1.0 size=       0kB time=-00:00:00.02 bitrate=N/A speed=N/A    ",
         "frame=    1 fps=  0 q=-1.0 size=       0kB time=0.00 bitrate=   0.0kbits/s    "},
        {"frame=   35 fps=0.0 q=-0.0 Lsize=N/A time=00:00:00.58 bitrate=N/A speed=0.9x    ",
         "frame=   35 fps=  0 q=0.0 Lsize=       0kB time=0.58 bitrate=   0.0kbits/s    "},
        {"size=     564kB time=01:02:03.50 bitrate=1536.2kbits/s speed= 200x    ",
         "size=     564kB time=3723.50 bitrate=1536.2kbits/s    "},
        // 7.1, by hand: KiB, and the time elapsed
        {"frame=   90 fps= 86 q=4.4 Lsize=    3149KiB time=00:00:03.00 bitrate=8597.5kbits/s speed=2.86x "
         "elapsed=0:00:01.04 "
         "   ",
         "frame=   90 fps= 86 q=4.4 Lsize=    3149kB time=3.00 bitrate=8597.5kbits/s    "},
        {"frame=123456 fps=1000 q=31.0 size=12345678kB time=100:00:00.00 bitrate=123456.7kbits/s speed=1x    ",
         "frame=123456 fps=1000 q=31.0 size=12345678kB time=360000.00 bitrate=123456.7kbits/s    "},
    };
    for (const auto& row : rows) {
        double time = 0;
        EXPECT_EQ(classicProgressLine(row.installed, time).value_or("-"), row.classic);
    }
}

TEST(ProgressLines, AnUnknownTimeRepeatsTheLast)
{
    double time = 0;
    ASSERT_TRUE(
        classicProgressLine("frame=    1 fps=0.0 q=1.0 size=       0kB time=00:00:01.50 bitrate=1kbits/s", time));
    const auto line =
        classicProgressLine("frame=    2 fps=0.0 q=1.0 size=       0kB time=N/A bitrate=N/A speed=N/A    ", time);
    EXPECT_NE(line.value_or("").find("time=1.50 "), std::string::npos);
}

TEST(ProgressLines, ATimeOfManyPartsIsNotKnownAndHugeNumbersHideNothing)
{
    double time = 1.5;
    const auto parts = classicProgressLine("frame=1 size=0kB time=1" + std::string(150, ':') + "1 bitrate=1", time);
    EXPECT_NE(parts.value_or("").find(" time=1.50 bitrate="), std::string::npos);
    const std::string digits(300, '9');
    const auto huge =
        classicProgressLine("frame=" + digits + " size=" + digits + "kB time=00:00:02.00 bitrate=1", time);
    EXPECT_NE(huge.value_or("").find("kB time=2.00 bitrate="), std::string::npos);
    const auto beyond = classicProgressLine("frame=1 size=0kB time=" + digits + "999999999:00:00 bitrate=1", time);
    EXPECT_NE(beyond.value_or("").find(" time=0.00 bitrate="), std::string::npos);
}

TEST(ProgressLines, OtherLinesAreNoProgress)
{
    for (const char* line : {"", "frame=", "frame size time= bitrate=", "  frame= 1 time=00:00:01.00 bitrate=1",
                             "title: frame=1 time=2 bitrate=3", "timecode = 1"}) {
        EXPECT_FALSE(isProgressLine(line)) << line;
    }
}

TEST(SummaryLines, LoseWhatCameLater)
{
    EXPECT_EQ(classicSummaryLine("video:30252kB audio:1878kB subtitle:0kB other streams:0kB global headers:0kB muxing "
                                 "overhead: 0.013261%"),
              "video:30252kB audio:1878kB global headers:0kB muxing overhead 0.013261%");
    // 7.1, by hand
    EXPECT_EQ(
        classicSummaryLine("[out#0/mp4 @ 0x55d0c0de] video:158KiB audio:24KiB subtitle:0KiB other streams:0KiB global "
                           "headers:0KiB muxing overhead: 2.174905%"),
        "video:158kB audio:24kB global headers:0kB muxing overhead 2.174905%");
    EXPECT_FALSE(classicSummaryLine("video: none"));
}

TEST(ErrorLines, OpenFailuresHaveTheirOldWords)
{
    struct {
        const char* installed;
        const char* classic; // "-": no reason
    } const rows[] = {
        {"Invalid data found when processing input", "Unknown format"},
        {"could not find codec parameters", "could not find codec parameters"},
        {"Input/output error", "I/O error occured"},
        {"No such file or directory", "No such file or directory"},
        {"Is a directory", "Error while opening file (Is a directory)"},
        {"Permission denied", "Error while opening file (Permission denied)"},
        {"corrupt decoded frame in stream 0", "-"},
        {"", "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(classicOpenFailure(row.installed).value_or("-"), row.classic) << row.installed;
    }
}

TEST(ProgressLines, TellWhetherThereWasContent)
{
    EXPECT_TRUE(countsFrames("frame=    1 fps=0.0 q=2.0 size=       0kB time=00:00:00.03 bitrate=  10.5kbits/s"));
    EXPECT_FALSE(countsFrames("frame=    0 fps=0.0 q=-1.0 Lsize=       0kB time=00:00:00.00 bitrate=N/A speed=   0x"));
    EXPECT_FALSE(countsFrames("size=       1kB time=00:00:00.03 bitrate=  10.5kbits/s"));
    const std::string zeros = "video:0kB audio:0kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: ";
    EXPECT_TRUE(tellsNoContent(zeros + "unknown"));
    EXPECT_FALSE(tellsNoContent(zeros + "120.5%"));
    // 7.x, by hand
    EXPECT_TRUE(tellsNoContent("[out#0/mov @ 0x1] video:0KiB audio:0KiB subtitle:0KiB other streams:0KiB global "
                               "headers:0KiB muxing overhead: unknown"));
    for (const char* line :
         {"video:1kB audio:0kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: unknown",
          "video:0kB audio:10kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: unknown",
          "video:0kB audio:0kB subtitle:1kB other streams:0kB global headers:0kB muxing overhead: unknown",
          "video:0kB audio:0kB subtitle:0kB other streams:1kB global headers:0kB muxing overhead: unknown", ""}) {
        EXPECT_FALSE(tellsNoContent(line)) << line;
    }
}

TEST(ErrorLines, TellDamagedOutputs)
{
    for (const char* line :
         {"Error writing trailer of file:/proc/self/fd/5: No space left on device",
          "Error closing file file:x: Input/output error", "av_interleaved_write_frame(): No space left on device",
          "[out#0/mov @ 0x1] Error muxing a packet", "Conversion failed!", "[mov @ 0x1] File too large"}) {
        EXPECT_TRUE(tellsWriteFailure(line)) << line;
    }
    for (const char* line :
         {"    title           : No space left on device", "video:1kB", "", "Error while decoding stream"}) {
        EXPECT_FALSE(tellsWriteFailure(line)) << line;
    }
}

TEST(Failures, OfReadingAreOfTheDeviceAndNotOfTheClip)
{
    for (const char* reason :
         {"Input/output error", "Stale file handle", "No such device", "No such device or address",
          "Transport endpoint is not connected", "Connection timed out", "Cannot allocate memory"}) {
        EXPECT_TRUE(tellsReadFailure(reason)) << reason;
    }
    for (const char* reason : {"Invalid data found when processing input", "End of file",
                               "corrupt input packet in stream 0", "No such file or directory", ""}) {
        EXPECT_FALSE(tellsReadFailure(reason)) << reason;
    }
}

TEST(ErrorLines, TellWhatIsRefused)
{
    EXPECT_EQ(refusedOption("Unrecognized option 'vsync'."), "vsync");
    EXPECT_FALSE(refusedOption("    title : Unrecognized option 'vsync'."));
    EXPECT_TRUE(refusesAnnexB("[h264_mp4toannexb @ 0x1] Codec 'mjpeg' (7) is not supported by the bitstream filter "
                              "'h264_mp4toannexb'. Supported codecs are: h264 (27) "));
    EXPECT_EQ(streamWithoutParameters("[mpegts @ 0x1] Could not find codec parameters for stream 2 (Audio: ac3, 0 "
                                      "channels): unspecified sample rate"),
              2);
}

TEST(MetadataLines, CannotPoseAsTheTranscript)
{
    for (const char* value : {"Stream #0.5: Video: h264, 640x480", "Input #0, mov", "Output #0, avi",
                              "At least one output file must be specified", "x: Unknown format", "Duration: 10",
                              "unsupported video codec"}) {
        const std::string line = std::string("    title           : ") + value;
        ASSERT_TRUE(isMetadataLine(line));
        const std::string defused = defusedMetadataLine(line);
        EXPECT_EQ(defused.size(), line.size());
        EXPECT_EQ(defused.find(value), std::string::npos) << defused;
    }
    EXPECT_EQ(defusedMetadataLine("    title           : Unknown format").find(": Unknown format"), std::string::npos);
    EXPECT_EQ(defusedMetadataLine("    title           : A day at sea"), "    title           : A day at sea");
    EXPECT_FALSE(isMetadataLine("  Duration: 00:00:10.00, start: 0"));
}

TEST(LineSplitter, EndsLinesAtReturnsAndLineFeeds)
{
    std::vector<std::string> lines;
    LineSplitter splitter([&](std::string_view line, char end) { lines.push_back(std::string(line) + end); });
    splitter.feed("a\rb\n\nc");
    EXPECT_EQ(lines, (std::vector<std::string>{"a\r", "b\n", "\n"}));
    splitter.feed("d");
    splitter.feed("\r\n");
    splitter.feed("last");
    splitter.finish();
    splitter.finish();
    EXPECT_EQ(lines, (std::vector<std::string>{"a\r", "b\n", "\n", "cd\r", "\n", "last\n"}));
}

TEST(WritablePieces, AreShortAndWholeCharacters)
{
    EXPECT_EQ(writablePieces("abcdef", 4), (std::vector<std::string_view>{"abcd", "ef"}));
    const std::string text = "aé€😀é"; // 1, 2, 3, 4 and 2 bytes
    for (std::size_t limit = 4; limit < 14; ++limit) {
        std::string joined;
        for (const std::string_view piece : writablePieces(text, limit)) {
            EXPECT_LE(piece.size(), limit);
            EXPECT_EQ(validUtf8(piece), piece);
            joined += piece;
        }
        EXPECT_EQ(joined, text);
    }
    const std::string noText(10, '\x80');
    EXPECT_FALSE(writablePieces(noText, 4).empty());
}

TEST(TextPieces, InvalidBytesAreReplaced)
{
    EXPECT_EQ(validUtf8("caf\xe9 x"), "caf\xef\xbf\xbd x");
    EXPECT_EQ(validUtf8("h\xc3\xa9 \xf0\x9f\x98\x80"), "h\xc3\xa9 \xf0\x9f\x98\x80");
    for (const char* bad : {"\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82", "\xff"}) {
        EXPECT_NE(validUtf8(bad).find("\xef\xbf\xbd"), std::string::npos);
    }
}

TEST(TextPieces, NamesStayOnOneLine)
{
    EXPECT_EQ(onOneLine("a\nb\rc\td\x7f"), "a\\nb\\rc\\x09d\\x7f");
    EXPECT_EQ(onOneLine("é \" ' $"), "é \" ' $");
}

TEST(TextPieces, FieldsInsideBracketsStayTogether)
{
    EXPECT_EQ(topLevelFields("h264 (a, b), yuv(x, (y, z)), 1 [a, b]"),
              (std::vector<std::string>{"h264 (a, b)", "yuv(x, (y, z))", "1 [a, b]"}));
    EXPECT_EQ(withoutParentheses("a (b (c)) d(e)"), "a d");
    EXPECT_EQ(withoutParentheses("a ) b"), "a ) b");
}

} // namespace

} // namespace tavrix::front
